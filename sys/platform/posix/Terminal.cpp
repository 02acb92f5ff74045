#include "sys/platform/Terminal.h"

#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace sys::platform {

namespace {

int descriptorOf(StandardStream stream) {
    return stream == StandardStream::output ? STDOUT_FILENO : STDERR_FILENO;
}

/// Whether the type of the terminal is known, and is not that of a printer.
bool hasKnownTerminal() {
    char const* const terminal = getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

}  // namespace

bool supportsControlSequences(StandardStream stream) {
    if (isatty(STDOUT_FILENO) == 0) {
        return false;
    }
    if (stream == StandardStream::error && isatty(STDERR_FILENO) == 0) {
        return false;
    }
    return hasKnownTerminal();
}

bool redrawsLines(StandardStream stream) {
    return isatty(descriptorOf(stream)) != 0 && hasKnownTerminal();
}

int terminalWidth(StandardStream stream) {
    winsize size{};
    return ioctl(descriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                                  : 80;
}

bool writeStandardStream(StandardStream stream, char const* text, std::size_t length) {
    int const descriptor = descriptorOf(stream);
    while (length > 0) {
        ssize_t const written = write(descriptor, text, length);
        if (written > 0) {
            text += written;
            length -= static_cast<std::size_t>(written);
        } else if (written < 0 && errno == EAGAIN) {
            // Another process may have made a shared terminal non-blocking.
            pollfd waiting{descriptor, POLLOUT, 0};
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
