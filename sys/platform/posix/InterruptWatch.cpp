#include "sys/platform/InterruptWatch.h"

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <system_error>
#include <thread>

namespace sys::platform {

namespace {

using std::chrono::steady_clock;

/// A request to end often comes twice: to the process and to its group.
auto const sameRequest = std::chrono::milliseconds(200);

bool isIgnored(int number) {
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

void endBy(int number) {
    signal(number, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    raise(number);
}

}  // namespace

// The signals are blocked in every thread and taken by one that waits for them, so no handler runs
// in the middle of other code.
struct InterruptWatch::State {
    sigset_t watched;
    sigset_t before;
    bool ignoresTermination = false;
    std::atomic<bool> ending = false;
    std::atomic<int> interruption = 0;  ///< the number of the first signal
    std::thread thread;

    void Watch(void (*act)()) {
        steady_clock::time_point first;
        for (int number = 0; sigwait(&watched, &number) == 0 && !ending;) {
            if (number == SIGTERM && ignoresTermination) {
                continue;
            }
            if (interruption == 0) {
                first = steady_clock::now();
                interruption = number;
                act();
            } else if (steady_clock::now() - first > sameRequest) {
                endBy(number);
            }
        }
    }
};

InterruptWatch::InterruptWatch(void (*act)()) : state_(std::make_unique<State>()) {
    sigemptyset(&state_->watched);
    sigaddset(&state_->watched, SIGTERM);
    state_->ignoresTermination = isIgnored(SIGTERM);
    // A shell starts background jobs with the user's interrupt ignored: it is not meant for them.
    if (!isIgnored(SIGINT)) {
        sigaddset(&state_->watched, SIGINT);
    }
    pthread_sigmask(SIG_BLOCK, &state_->watched, &state_->before);
    try {
        state_->thread = std::thread([state = state_.get(), act] { state->Watch(act); });
    } catch (std::system_error const&) {
        pthread_sigmask(SIG_SETMASK, &state_->before, nullptr);
    }
}

InterruptWatch::~InterruptWatch() {
    if (!state_->thread.joinable()) {
        return;
    }
    state_->ending = true;
    // The thread waits for the signal, so it ends the wait and not the process.
    // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread)
    pthread_kill(state_->thread.native_handle(), SIGTERM);
    state_->thread.join();
    signal(SIGTERM, SIG_IGN);
    pthread_sigmask(SIG_SETMASK, &state_->before, nullptr);
}

void InterruptWatch::EndIfInterrupted() {
    if (int const number = state_->interruption; number != 0) {
        endBy(number);
    }
}

}  // namespace sys::platform
