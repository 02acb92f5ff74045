#include "sys/platform/InterruptWatch.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace sys::platform {

namespace {

/// What the handler writes to; it may do little else.
volatile sig_atomic_t noticeTo = -1;

void notice(int) {
    int const kept = errno;
    [[maybe_unused]] ssize_t const written = write(noticeTo, "!", 1);
    errno = kept;
}

void handle(int number, void (*handler)(int), unsigned flags) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    // Who runs us in the background may have it that the user's interrupt is not for us.
    if (before.sa_handler != SIG_IGN) {
        struct sigaction action = {};
        action.sa_handler = handler;
        action.sa_flags = static_cast<int>(flags);
        sigaction(number, &action, nullptr);
    }
}

}  // namespace

struct InterruptWatch::State {
    int ends[2] = {-1, -1};
    std::thread thread;
};

InterruptWatch::InterruptWatch(void (*act)()) : state_(std::make_unique<State>()) {
    if (pipe2(state_->ends, O_CLOEXEC) != 0) {
        return;
    }
    state_->thread = std::thread([act, from = state_->ends[0]] {
        char noticed = 0;
        while (read(from, &noticed, 1) < 0 && errno == EINTR) {
        }
        if (noticed == '!') {
            act();
        }
    });
    noticeTo = state_->ends[1];
    handle(SIGINT, &notice, SA_RESTART | SA_RESETHAND);
    // A request to end may well come twice at once, to us and to all our group.
    handle(SIGTERM, &notice, SA_RESTART);
}

InterruptWatch::~InterruptWatch() {
    if (!state_->thread.joinable()) {
        return;
    }
    // The process is on its way out: that it is to end is nothing new to it.
    handle(SIGTERM, SIG_IGN, 0);
    handle(SIGINT, SIG_DFL, 0);
    close(state_->ends[1]);
    state_->thread.join();
    close(state_->ends[0]);
}

}  // namespace sys::platform
