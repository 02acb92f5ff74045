#include "sys/platform/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace sys::platform {

void prepareProcess() {
    signal(SIGPIPE, SIG_IGN);
    for (int stream = 0; stream <= 2; ++stream) {
        // open takes the lowest free number, which is this stream's when it is closed.
        if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) {
            return;
        }
    }
}

unsigned currentThreadId() {
    return static_cast<unsigned>(gettid());
}

}  // namespace sys::platform
