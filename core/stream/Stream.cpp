#include "core/stream/Stream.h"

#include <cerrno>

namespace core {

char const* Stream::ClassName() const {
    return "Stream";
}

int Stream::WriteAll(void const* data, int count) {
    auto const* bytes = static_cast<char const*>(data);
    for (int done = 0; done < count;) {
        int const written = Write(bytes + done, count - done);
        if (written < 1) {
            // A file that takes nothing and names no reason would keep us here for ever.
            return written < 0 ? written : -EIO;
        }
        done += written;
    }
    return 0;
}

}  // namespace core
