#include <exception>

#include "core/text/message.h"
#include "device/DeviceApplication.h"
#include "device/println.h"
#include "sys/platform/Arguments.h"

int main(int argc, char** argv) {
    try {
        device::DeviceApplication application;
        sys::platform::Arguments const arguments(argc, argv);
        application.Main(arguments.Count(), arguments.Words());
        return application.Result();
    } catch (std::exception const& exception) {
        // By now the devices have stopped and released their memory.
        device::println(core::faultLine(core::faultFromException(exception)));
        return 1;
    }
}
