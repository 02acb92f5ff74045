#include "sys/platform/Process.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

#include "sys/platform/Files.h"

namespace sys::platform {

void prepareProcess() {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    for (int stream = 0; stream <= 2; ++stream) {
        // open returns the lowest free number: that of this stream if it is closed.
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) {
            return;
        }
    }
}

void ignoreTerminalClose() {
    signal(SIGHUP, SIG_IGN);
}

std::vector<std::string> Arguments::Read(int argc, char const* const* argv) {
    return {argv, argv + argc};
}

int programPath(std::string& path) {
    return resolvePath("/proc/self/exe", path);
}

int processId() {
    return getpid();
}

unsigned currentThreadId() {
    return static_cast<unsigned>(gettid());
}

void nameThread(char const* name) {
    std::string_view const fitting = std::string_view(name).substr(0, 15);
    if (!fitting.empty()) {
        char text[16] = {};
        fitting.copy(text, fitting.size());
        pthread_setname_np(pthread_self(), text);
    }
}

bool environmentValue(char const* name, std::string& value) {
    // For "A=B", the C library would treat the start of A's value as a part of the name.
    char const* const found = std::strchr(name, '=') == nullptr ? std::getenv(name) : nullptr;
    if (found == nullptr) {
        return false;
    }
    value = found;
    return true;
}

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    for (char const* const* entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        entries.emplace_back(*entry);
    }
    return entries;
}

std::string errorText(int number) {
    return std::generic_category().message(number);
}

bool hasArmCrcInstructions() {
#ifdef HWCAP_CRC32  // defined only for 64-bit ARM: on other processors the bit has another meaning
    return (getauxval(AT_HWCAP) & HWCAP_CRC32) != 0;
#else
    return false;
#endif
}

namespace {

using std::chrono::steady_clock;

/// A termination request may arrive twice within this time: for the process and for its group.
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

// Every thread blocks the signals, and one waits for them: no signal handler interrupts other code.
struct InterruptHandler::State {
    sigset_t watched;
    sigset_t before;
    bool ignoresTermination = false;
    std::atomic<bool> ending = false;
    std::atomic<int> interruption = 0;  ///< the number of the first signal
    std::thread thread;
    std::thread::id watcher;  ///< of the thread, also after its end
    std::once_flag stopped;
    std::thread acting;  ///< runs the function: a second signal must not wait for its end

    void Act(void (*act)()) {
        try {
            acting = std::thread(act);
        } catch (std::system_error const&) {
            act();
        }
    }

    void Watch(void (*act)()) {
        steady_clock::time_point first;
        for (int number = 0; sigwait(&watched, &number) == 0 && !ending;) {
            if (number == SIGTERM && ignoresTermination) {
                continue;
            }
            if (interruption == 0) {
                first = steady_clock::now();
                interruption = number;
                Act(act);
            } else if (steady_clock::now() - first > sameRequest) {
                endBy(number);
            }
        }
    }

    void StopWatching() {
        if (std::this_thread::get_id() == watcher) {
            // Without a thread for it, this one runs the function.
            return;
        }
        std::call_once(stopped, [this] {
            ending = true;
            // The signal ends the wait of the thread, not the process.
            // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread)
            pthread_kill(thread.native_handle(), SIGTERM);
            thread.join();
        });
    }
};

InterruptHandler::InterruptHandler(void (*act)()) : state_(std::make_unique<State>()) {
    sigemptyset(&state_->watched);
    sigaddset(&state_->watched, SIGTERM);
    state_->ignoresTermination = isIgnored(SIGTERM);
    // Keep a signal ignored if the parent ignores it, as shells do for background jobs.
    if (!isIgnored(SIGINT)) {
        sigaddset(&state_->watched, SIGINT);
    }
    pthread_sigmask(SIG_BLOCK, &state_->watched, &state_->before);
    try {
        state_->thread = std::thread([state = state_.get(), act] { state->Watch(act); });
        state_->watcher = state_->thread.get_id();
    } catch (std::system_error const&) {
        pthread_sigmask(SIG_SETMASK, &state_->before, nullptr);
    }
}

InterruptHandler::~InterruptHandler() {
    if (state_->watcher == std::thread::id()) {
        return;
    }
    state_->StopWatching();
    if (state_->acting.joinable()) {
        state_->acting.join();
    }
    signal(SIGTERM, SIG_IGN);
    pthread_sigmask(SIG_SETMASK, &state_->before, nullptr);
}

Interruption InterruptHandler::Received() const {
    int const number = state_->interruption;
    return number == 0        ? Interruption::none
           : number == SIGINT ? Interruption::user
                              : Interruption::termination;
}

void InterruptHandler::EndAtOnce(int /*exitStatus*/) {
    EndIfInterrupted();
}

void InterruptHandler::EndIfInterrupted() {
    if (int const number = state_->interruption; number != 0) {
        // QEMU sends the signal again, to the whole process: the waiting thread would take it.
        state_->StopWatching();
        endBy(number);
    }
}

}  // namespace sys::platform
