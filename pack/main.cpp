#include "pack/PackApplication.h"
#include "sys/platform/Arguments.h"

int main(int argc, char** argv) {
    pack::PackApplication application;
    sys::platform::Arguments const arguments(argc, argv);
    application.Main(arguments.Count(), arguments.Words());
    return application.Result();
}
