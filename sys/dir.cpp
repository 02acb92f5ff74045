#include "sys/dir.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "sys/platform/Files.h"

namespace sys::dir {

namespace {

/// Creates the directory unless it exists.
int ensure(core::String const& path) {
    int const result = platform::createDirectory(path.getCString());
    // After the attempt: another process may create it meanwhile. The root of a drive exists, but
    // creating it fails for another reason.
    platform::FileStatus status;
    if (result == 0 || platform::statPath(path.getCString(), status) != 0) {
        return result;
    }
    if (status.type == platform::FileType::directory) {
        return 0;
    }
    return result == -EEXIST ? -ENOTDIR : result;
}

}  // namespace

int change(core::String const& path) {
    return platform::changeDirectory(path.getCString());
}

core::String current() {
    std::string path;
    return platform::currentDirectory(path) == 0 ? path.c_str() : "";
}

int create(core::String const& path, bool recursive) {
    if (!recursive) {
        return platform::createDirectory(path.getCString());
    }
    if (path.IsEmpty()) {
        return -ENOENT;
    }
    std::string_view const text = path.View();
    char const* const delimiters = pathStyle().delimiters;
    int result = 0;
    for (std::size_t end = 0; end < text.size();) {
        std::size_t const start = text.find_first_not_of(delimiters, end);
        if (start == std::string_view::npos) {
            break;
        }
        end = std::min(text.find_first_of(delimiters, start), text.size());
        // A failure counts only if the next directory fails, too: the start of \\?\C:\a and of
        // \\host\share\a is not a directory, but a path below it can be.
        int const made = ensure(path.Left(static_cast<int>(end)));
        result = made == 0 || result == 0 ? made : result;
    }
    return result;
}

}  // namespace sys::dir
