#include "device/DeviceApplication.h"

int main(int argc, char** argv) {
    return program::run<device::DeviceApplication>(argc, argv);
}
