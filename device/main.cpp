#include "device/DeviceApplication.h"

int main(int argc, char** argv) {
    device::DeviceApplication application;
    application.Main(argc, argv);
    return application.Result();
}
