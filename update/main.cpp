#include "program/Program.h"
#include "update/UpdateApplication.h"

int main(int argc, char** argv) {
    program::run<update::UpdateApplication>(argc, argv);
    // Not the result: scripts in the field rely on 0 and read the output.
    return 0;
}
