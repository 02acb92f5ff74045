#include "sys/platform/Terminal.h"

#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace sys::platform {

bool supportsControlSequences(StandardStream stream) {
    if (isatty(STDOUT_FILENO) == 0) {
        return false;
    }
    if (stream == StandardStream::error && isatty(STDERR_FILENO) == 0) {
        return false;
    }
    char const* const terminal = getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

bool writeStandardOutput(char const* text, std::size_t length) {
    while (length > 0) {
        ssize_t const written = write(STDOUT_FILENO, text, length);
        if (written > 0) {
            text += written;
            length -= static_cast<std::size_t>(written);
        } else if (written < 0 && errno == EAGAIN) {
            // Another process may have made a shared terminal non-blocking.
            pollfd waiting{STDOUT_FILENO, POLLOUT, 0};
            poll(&waiting, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace sys::platform

namespace sys {

// Terminals of this platform have control sequences only.
Screen* screenOf(platform::StandardStream) {
    return nullptr;
}

std::unique_ptr<Screen> screenOf(void*) {
    return nullptr;
}

}  // namespace sys
