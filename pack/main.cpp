#include "core/runtime/runProgram.h"
#include "pack/PackApplication.h"

int main(int argc, char** argv) {
    return core::runProgram<pack::PackApplication>(argc, argv, 1);
}
