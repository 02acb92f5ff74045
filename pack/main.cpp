#include "pack/PackApplication.h"

int main(int argc, char** argv) {
    pack::PackApplication application;
    application.Main(argc, argv);
    return application.Result();
}
