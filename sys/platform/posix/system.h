#pragma once

#include <cerrno>

// Results of POSIX calls in the form of the platform's headers: see sys/platform/Files.h.

namespace sys::platform {

/// Converts the result of a call that returns 0 on success.
inline int negativeErrno(int result) {
    return result == 0 ? 0 : -errno;
}

/// Retries a call on EINTR. Returns its result or the negative errno value.
template <class Call>
int retryOnEintr(Call call) {
    for (;;) {
        auto const result = call();
        if (result >= 0) {
            return static_cast<int>(result);
        }
        if (errno != EINTR) {
            return -errno;
        }
    }
}

}  // namespace sys::platform
