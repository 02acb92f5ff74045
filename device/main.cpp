#include "device/DeviceApplication.h"
#include "sys/platform/Arguments.h"

int main(int argc, char** argv) {
    device::DeviceApplication application;
    sys::platform::Arguments const arguments(argc, argv);
    application.Main(arguments.Count(), arguments.Words());
    return application.Result();
}
