#include "program/Program.h"
#include "update/UpdateApplication.h"

namespace {

/// The updater, with timeouts short enough for hundreds of sessions.
class ShortTimeoutUpdater : public update::UpdateApplication {
public:
    ShortTimeoutUpdater() {
        timeouts.headerAnswer = 20;
        timeouts.notification = 200;
    }
};

}  // namespace

int main(int argc, char** argv) {
    program::run<ShortTimeoutUpdater>(argc, argv);
    return 0;
}
