#include "sys/platform/FilesBelow.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "sys/platform/posix/results.h"
#include "sys/platform/splitPlainPath.h"

namespace sys::platform {

namespace {

/// Folders are opened only to go on from there, so they need not be readable.
int const folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// A walk from a folder downward. It holds the folder it has reached, by its descriptor and not by
/// its name: whoever moves folders or puts up links meanwhile cannot lead it elsewhere.
class Descent {
public:
    explicit Descent(char const* folder)
        : at_(withoutInterruption([&] { return open(folder, folderFlags); })) {}
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() { Close(); }

    int At() const { return at_; }

    /// Goes to the folder that the last of names is in, and makes missing ones when create is set.
    int GoToParent(std::vector<std::string> const& names, bool create) {
        int result = std::min(at_, 0);
        for (std::size_t i = 0; i + 1 < names.size() && result == 0; ++i) {
            result = Enter(names[i].c_str(), create);
        }
        return result;
    }

private:
    int Enter(char const* name, bool create) {
        if (create && mkdirat(at_, name, 0777) != 0 && errno != EEXIST) {
            return -errno;
        }
        int const next =
            withoutInterruption([&] { return openat(at_, name, folderFlags | O_NOFOLLOW); });
        if (next < 0) {
            struct stat found {};
            bool const link =
                fstatat(at_, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(found.st_mode);
            return link ? -ELOOP : next;
        }
        Close();
        at_ = next;
        return 0;
    }

    void Close() const {
        if (at_ >= 0) {
            close(at_);
        }
    }

    int at_;  ///< a negative error code when there was no way in
};

/// Does call(folder, name) with the parent of path and its last name.
template <class Call>
int inParent(char const* folder, char const* path, bool create, Call call) {
    std::vector<std::string> names;
    if (!splitPlainPath(path, "", names)) {
        return -EINVAL;
    }
    Descent descent(folder);
    int const result = descent.GoToParent(names, create);
    return result == 0 ? call(descent.At(), names.back().c_str()) : result;
}

}  // namespace

int statBelow(char const* folder, char const* path, FileStatus& status) {
    return inParent(folder, path, false, [&](int parent, char const* name) {
        struct stat found {};
        if (fstatat(parent, name, &found, AT_SYMLINK_NOFOLLOW) != 0) {
            return -errno;
        }
        status.size = found.st_size;
        status.type = fileTypeOf(found.st_mode);
        return 0;
    });
}

int createBelow(char const* folder, char const* path, FileHandle& opened) {
    return inParent(folder, path, true, [&](int parent, char const* name) {
        int const flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        int const file = withoutInterruption([&] { return openat(parent, name, flags, 0666); });
        opened = file >= 0 ? file : noFile;
        return std::min(file, 0);
    });
}

int renameBelow(char const* folder, char const* path, char const* name, bool replace) {
    return inParent(folder, path, false, [&](int parent, char const* from) {
        std::vector<std::string> names;
        bool const plain = splitPlainPath(name, "", names) && names.size() == 1;
        return plain ? renameFrom(parent, from, name, replace) : -EINVAL;
    });
}

int removeBelow(char const* folder, char const* path) {
    return inParent(folder, path, false, [](int parent, char const* name) {
        return negativeErrno(unlinkat(parent, name, 0));
    });
}

}  // namespace sys::platform
