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

/// Directories are opened only to go on from there, so they need not be readable.
int const directoryFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

int descriptor(FileHandle directory) {
    return static_cast<int>(directory);
}

/// A walk from a directory downward. It holds the directory reached by its descriptor, not by its
/// name: directories that are moved and links that are created meanwhile cannot redirect it.
class Descent {
public:
    explicit Descent(FileHandle directory) : top_(descriptor(directory)), at_(top_) {}
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() { Leave(); }

    int At() const { return at_; }

    /// Goes to the parent directory of the last of names, creating missing ones if create is set.
    int GoToParent(std::vector<std::string> const& names, bool create) {
        int result = at_ >= 0 ? 0 : -EBADF;
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
            retryOnEintr([&] { return openat(at_, name, directoryFlags | O_NOFOLLOW); });
        if (next < 0) {
            struct stat found {};
            bool const link =
                fstatat(at_, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(found.st_mode);
            return link ? -ELOOP : next;
        }
        Leave();
        at_ = next;
        return 0;
    }

    void Leave() const {
        if (at_ != top_) {
            close(at_);
        }
    }

    int const top_;
    int at_;
};

/// Calls call(parent, name) with the parent directory of path and the last name of path.
template <class Call>
int inParent(FileHandle directory, char const* path, bool create, Call call) {
    std::vector<std::string> names;
    if (!splitPlainPath(path, "", names)) {
        return -EINVAL;
    }
    Descent descent(directory);
    int const result = descent.GoToParent(names, create);
    return result == 0 ? call(descent.At(), names.back().c_str()) : result;
}

/// Stores the permissions of a regular file. Returns false if name is something else.
bool readPermissions(int parent, char const* name, mode_t& permissions) {
    struct stat found {};
    bool const regular =
        fstatat(parent, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(found.st_mode);
    permissions = regular ? found.st_mode & 0777 : permissions;
    return regular;
}

}  // namespace

int ConfinedDirectory::Open(char const* path) {
    Close();
    int const opened = retryOnEintr([&] { return open(path, directoryFlags); });
    directory_ = opened >= 0 ? opened : noFile;
    return std::min(opened, 0);
}

bool ConfinedDirectory::AllowsName(std::string_view name) const {
    long const limit = fpathconf(descriptor(directory_), _PC_NAME_MAX);
    return limit < 0 || name.size() <= static_cast<std::size_t>(limit);
}

int ConfinedDirectory::Stat(char const* path, FileStatus& status) const {
    return inParent(directory_, path, false, [&](int parent, char const* name) {
        struct stat found {};
        return takeStatus(fstatat(parent, name, &found, AT_SYMLINK_NOFOLLOW), found, status);
    });
}

int ConfinedDirectory::CreatePart(char const* path, char const* part, PartPermissions permissions,
                                  FileHandle& opened) const {
    return inParent(directory_, path, true, [&](int parent, char const* name) {
        mode_t mode = permissions == PartPermissions::ownerOnly ? 0600 : 0666;
        bool const kept =
            permissions == PartPermissions::ofTarget && readPermissions(parent, name, mode);
        int const flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
        int const file = retryOnEintr([&] { return openat(parent, part, flags, mode); });
        if (file >= 0 && kept) {
            // What the umask took away. A file system without permissions rejects it.
            (void)fchmod(file, mode);
        }
        opened = file >= 0 ? file : noFile;
        return std::min(file, 0);
    });
}

int ConfinedDirectory::RenamePart(char const* path, char const* part, PartPermissions,
                                  bool replace) const {
    return inParent(directory_, path, false, [&](int parent, char const* name) {
        return renameFrom(parent, part, name, replace);
    });
}

int ConfinedDirectory::RemovePart(char const* path, char const* part) const {
    return inParent(directory_, path, false, [&](int parent, char const*) {
        return negativeErrno(unlinkat(parent, part, 0));
    });
}

}  // namespace sys::platform
