#include "pack/PackApplication.h"

int main(int argc, char** argv) {
    return program::run<pack::PackApplication>(argc, argv);
}
