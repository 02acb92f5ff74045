#include "sys/dir.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "sys/platform/Folders.h"

namespace sys::dir {

namespace {

/// Makes the folder unless it is there.
int ensure(core::String const& path) {
    platform::FileStatus status;
    if (platform::statPath(path.getCString(), status) == 0) {
        return status.type == platform::FileType::directory ? 0 : -ENOTDIR;
    }
    int const result = platform::createFolder(path.getCString());
    // Somebody else may have been quicker; then it is his folder that counts.
    bool const there = result == -EEXIST && platform::statPath(path.getCString(), status) == 0 &&
                       status.type == platform::FileType::directory;
    return there ? 0 : result;
}

}  // namespace

int change(core::String const& path) {
    return platform::changeFolder(path.getCString());
}

core::String current() {
    std::string path;
    return platform::currentFolder(path) == 0 ? path.c_str() : "";
}

int create(core::String const& path, bool recursive) {
    if (!recursive) {
        return platform::createFolder(path.getCString());
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
