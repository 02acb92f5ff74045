#include "sys/platform/Arguments.h"
#include "update/UpdateApplication.h"

int main(int argc, char** argv) {
    update::UpdateApplication application;
    sys::platform::Arguments const arguments(argc, argv);
    application.Main(arguments.Count(), arguments.Words());
    return application.Result();
}
