#include "core/runtime/runProgram.h"
#include "update/UpdateApplication.h"

namespace {

/// The updater as it is, but for waits that are too long for hundreds of sessions.
class ShortTimeoutUpdater : public update::UpdateApplication {
public:
    ShortTimeoutUpdater() {
        timeouts.headerAnswer = 20;
        timeouts.notification = 200;
    }
};

}  // namespace

int main(int argc, char** argv) {
    return core::runProgram<ShortTimeoutUpdater>(argc, argv, 0);
}
