#include "sys/platform/Arguments.h"
#include "update/UpdateApplication.h"

namespace {

/// The updater as it is, but for waits that are too long for hundreds of sessions.
class HastyUpdater : public update::UpdateApplication {
public:
    HastyUpdater() {
        limits.headerAnswer = 20;
        limits.notification = 200;
    }
};

}  // namespace

int main(int argc, char** argv) {
    HastyUpdater updater;
    sys::platform::Arguments const arguments(argc, argv);
    updater.Main(arguments.Count(), arguments.Words());
    return updater.Result();
}
