#include "job/JobApplication.h"

namespace {

/// ravelink-job, with timeouts short enough for sessions that end by them.
class ShortTimeoutJob : public job::JobApplication {
public:
    ShortTimeoutJob() {
        timeouts.requestAnswer = 3'000;
        timeouts.headerAnswer = 250;
        timeouts.transferStall = 1'500;
        timeouts.completion = 1'500;
        timeouts.notification = 500;
    }
};

}  // namespace

int main(int argc, char** argv) {
    return program::run<ShortTimeoutJob>(argc, argv);
}
