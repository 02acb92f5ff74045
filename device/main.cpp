#include "core/runtime/runProgram.h"
#include "device/DeviceApplication.h"

int main(int argc, char** argv) {
    return core::runProgram<device::DeviceApplication>(argc, argv, 1);
}
