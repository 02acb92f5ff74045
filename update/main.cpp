#include "core/runtime/runProgram.h"
#include "update/UpdateApplication.h"

int main(int argc, char** argv) {
    // 0 as after every failure: scripts in the field rely on it.
    return core::runProgram<update::UpdateApplication>(argc, argv, 0);
}
