#include "update/UpdateApplication.h"

int main(int argc, char** argv) {
    update::UpdateApplication application;
    application.Main(argc, argv);
    return application.Result();
}
