#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "sys/platform/Files.h"

// What POSIX calls return, in the words of the platform's headers.

namespace sys::platform {

/// The result of a call that answers 0 on success.
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

/// Moves a text that the C library allocated into text; null means that the call failed.
inline int takeText(char* allocated, std::string& text) {
    if (allocated == nullptr) {
        return -errno;
    }
    text = allocated;
    std::free(allocated);
    return 0;
}

FileType fileTypeOf(mode_t mode);

/// Stores what a stat call found; its result as 0 or the negative errno value.
int takeStatus(int result, struct stat const& found, FileStatus& status);

/// renameFile, with relative paths beginning in an open folder.
int renameFrom(int folder, char const* from, char const* to, bool replace);

}  // namespace sys::platform
