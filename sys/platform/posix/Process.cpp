#include "sys/platform/Process.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <string_view>

namespace sys::platform {

void prepareProcess() {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    for (int stream = 0; stream <= 2; ++stream) {
        // open takes the lowest free number, which is this stream's when it is closed.
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) {
            return;
        }
    }
}

void outliveTerminal() {
    signal(SIGHUP, SIG_IGN);
}

std::vector<std::string> programArguments(int argc, char const* const* argv) {
    return {argv, argv + argc};
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

}  // namespace sys::platform
