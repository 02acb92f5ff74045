#include "sys/platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "sys/platform/PathStyle.h"
#include "sys/platform/posix/system.h"

namespace sys {

PathStyle const& pathStyle() {
    return posixPathStyle;
}

}  // namespace sys

namespace sys::platform {

namespace {

static_assert(sizeof(off_t) == 8, "files may be larger than 2 GiB");

int openFlags(unsigned mode) {
    // Non-blocking: opening a pipe without a writer must not hang. Regular files ignore it.
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    bool const reads = (mode & openRead) != 0;
    bool const writes = (mode & openWrite) != 0;
    flags |= reads && writes ? O_RDWR : (writes ? O_WRONLY : O_RDONLY);
    flags |= (mode & openCreate) != 0 ? O_CREAT : 0;
    flags |= (mode & openTruncate) != 0 ? O_TRUNC : 0;
    flags |= (mode & openAppend) != 0 ? O_APPEND : 0;
    flags |= (mode & openNoFollow) != 0 ? O_NOFOLLOW : 0;
    return flags;
}

int descriptor(FileHandle file) {
    return static_cast<int>(file);
}

FileType fileTypeOf(mode_t mode) {
    static constexpr struct {
        mode_t bits;
        FileType type;
    } types[] = {
        {S_IFREG, FileType::regular}, {S_IFDIR, FileType::directory}, {S_IFLNK, FileType::link},
        {S_IFIFO, FileType::pipe},    {S_IFSOCK, FileType::socket},   {S_IFBLK, FileType::device},
        {S_IFCHR, FileType::device},
    };
    for (auto const& entry : types) {
        if ((mode & S_IFMT) == entry.bits) {
            return entry.type;
        }
    }
    return FileType::other;
}

/// Stores what a stat call found. Returns 0 or the negative errno value of result.
int storeStatus(int result, struct stat const& found, FileStatus& status) {
    if (result != 0) {
        return -errno;
    }
    status.size = found.st_size;
    status.modified = found.st_mtim.tv_sec * 1000LL + found.st_mtim.tv_nsec / 1'000'000;
    status.type = fileTypeOf(found.st_mode);
    status.permissions = found.st_mode & 07777;
    status.volume = found.st_dev;
    status.number = found.st_ino;
    return 0;
}

/// Assigns a string that the C library allocated, and frees it; null is a failed call.
int assignAndFree(char* allocated, std::string& text) {
    if (allocated == nullptr) {
        return -errno;
    }
    std::unique_ptr<char, decltype(&std::free)> const owner(allocated, &std::free);
    text = allocated;
    return 0;
}

/// Renames as renameFile does; relative paths start in an open directory.
int renameAt(int directory, char const* from, char const* to, bool replace) {
    if (replace) {
        return negativeErrno(renameat(directory, from, directory, to));
    }
    int const result = negativeErrno(renameat2(directory, from, directory, to, RENAME_NOREPLACE));
    if (result != -EINVAL && result != -ENOSYS) {
        return result;
    }
    // This file system cannot check and rename in one step.
    struct stat found {};
    bool const exists = fstatat(directory, to, &found, AT_SYMLINK_NOFOLLOW) == 0;
    return exists ? -EEXIST : negativeErrno(renameat(directory, from, directory, to));
}

}  // namespace

int openFile(char const* path, unsigned mode, FileHandle& opened) {
    int const file = retryOnEintr([&] { return open(path, openFlags(mode), 0666); });
    if (file < 0) {
        return file;
    }
    FileStatus status;
    int result = statFile(file, status);
    if (result == 0 && status.type == FileType::directory) {
        result = -EISDIR;
    }
    if (result != 0) {
        closeFile(file);
        return result;
    }
    opened = file;
    return 0;
}

int createUniqueFile(char const* prefix, std::string& path, FileHandle& opened) {
    std::string name = prefix;
    name += "XXXXXX";
    int const file = retryOnEintr([&] { return mkostemp(name.data(), O_CLOEXEC); });
    if (file < 0) {
        return file;
    }
    // A copy could run out of memory and leave the file without an owner.
    path = std::move(name);
    opened = file;
    return 0;
}

int readFile(FileHandle file, void* buffer, int count) {
    if (count < 1) {
        return 0;
    }
    return retryOnEintr(
        [&] { return read(descriptor(file), buffer, static_cast<std::size_t>(count)); });
}

int writeFile(FileHandle file, void const* data, int count) {
    if (count < 1) {
        return 0;
    }
    return retryOnEintr(
        [&] { return write(descriptor(file), data, static_cast<std::size_t>(count)); });
}

long long seekFile(FileHandle file, long long offset, SeekOrigin origin) {
    int const whence = origin == SeekOrigin::begin     ? SEEK_SET
                       : origin == SeekOrigin::current ? SEEK_CUR
                                                       : SEEK_END;
    off_t const position = lseek(descriptor(file), offset, whence);
    return position >= 0 ? position : -errno;
}

int lockFile(FileHandle file) {
    // A lock of the open file, not of the process, which would lose it with any other handle.
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return retryOnEintr([&] { return fcntl(descriptor(file), F_OFD_SETLK, &whole); });
}

int syncFile(FileHandle file) {
    return retryOnEintr([&] { return fsync(descriptor(file)); });
}

int statFile(FileHandle file, FileStatus& status) {
    struct stat found {};
    return storeStatus(fstat(descriptor(file), &found), found, status);
}

int resizeFile(FileHandle file, long long size) {
    return retryOnEintr([&] { return ftruncate(descriptor(file), size); });
}

void copyPermissions(FileHandle from, FileHandle to) {
    struct stat found {};
    if (fstat(descriptor(from), &found) == 0) {
        // A file system without permissions rejects them; the file is complete nevertheless.
        (void)fchmod(descriptor(to), found.st_mode & 0777);
    }
}

int closeFile(FileHandle file) {
    int const result = negativeErrno(close(descriptor(file)));
    // Not an error; do not retry: the file is closed and its descriptor may already be reused.
    return result == -EINTR ? 0 : result;
}

int statPath(char const* path, FileStatus& status) {
    struct stat found {};
    return storeStatus(stat(path, &found), found, status);
}

int statEntry(char const* path, FileStatus& status) {
    struct stat found {};
    return storeStatus(lstat(path, &found), found, status);
}

int resolvePath(char const* path, std::string& resolved) {
    return assignAndFree(realpath(path, nullptr), resolved);
}

int removeFile(char const* path) {
    return negativeErrno(unlink(path));
}

int renameFile(char const* from, char const* to, bool replace) {
    return renameAt(AT_FDCWD, from, to, replace);
}

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

DirectoryEntry entryOf(int directory, char const* name) {
    struct stat found {};
    bool known = fstatat(directory, name, &found, AT_SYMLINK_NOFOLLOW) == 0;
    bool const isLink = known && S_ISLNK(found.st_mode);
    if (isLink) {
        known = fstatat(directory, name, &found, 0) == 0;
    }
    return {name, known ? fileTypeOf(found.st_mode) : FileType::other, isLink};
}

}  // namespace

int listDirectory(char const* path, std::vector<DirectoryEntry>& entries) {
    Directory const directory(opendir(path));
    if (directory == nullptr) {
        return -errno;
    }
    for (;;) {
        errno = 0;
        dirent const* const entry = readdir(directory.get());
        if (entry == nullptr) {
            return -errno;
        }
        std::string_view const name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back(entryOf(dirfd(directory.get()), entry->d_name));
        }
    }
}

int checkDirectory(char const* path) {
    return Directory(opendir(path)) != nullptr ? 0 : -errno;
}

int createDirectory(char const* path) {
    return negativeErrno(mkdir(path, 0777));
}

int changeDirectory(char const* path) {
    return negativeErrno(chdir(path));
}

int currentDirectory(std::string& path) {
    return assignAndFree(getcwd(nullptr, 0), path);
}

std::string temporaryDirectory() {
    char const* const wanted = std::getenv("TMPDIR");
    return wanted != nullptr && *wanted != '\0' ? wanted : "/tmp";
}

namespace {

enum class Missing { fail, create };

char const reservedCharacters[] = "";

/// Directories are opened only to start from there, so they need not be readable.
int const directoryFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// Stores the permissions of a regular file. Returns false if name is something else.
bool readPermissions(int parent, char const* name, mode_t& permissions) {
    struct stat found {};
    bool const regular =
        fstatat(parent, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(found.st_mode);
    permissions = regular ? found.st_mode & 0777 : permissions;
    return regular;
}

/// A walk down from a directory, and the operations in the directory reached. It refers to that by
/// descriptor, not by name: moved directories and new links cannot redirect it.
class Descent {
public:
    Descent() = default;
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() { Leave(); }

    int Start(FileHandle directory) {
        top_ = at_ = descriptor(directory);
        return at_ >= 0 ? 0 : -EBADF;
    }

    int Enter(std::string const& name, Missing missing) {
        if (missing == Missing::create && mkdirat(at_, name.c_str(), 0777) != 0 &&
            errno != EEXIST) {
            return -errno;
        }
        int const next =
            retryOnEintr([&] { return openat(at_, name.c_str(), directoryFlags | O_NOFOLLOW); });
        if (next < 0) {
            FileStatus status;
            return Stat(name, status) == 0 && status.type == FileType::link ? -ELOOP : next;
        }
        Leave();
        at_ = next;
        return 0;
    }

    int Stat(std::string const& name, FileStatus& status) const {
        struct stat found {};
        return storeStatus(fstatat(at_, name.c_str(), &found, AT_SYMLINK_NOFOLLOW), found, status);
    }

    int CreatePart(std::string const& name, char const* part, PartPermissions permissions,
                   FileHandle& opened) const {
        mode_t mode = permissions == PartPermissions::ownerOnly ? 0600 : 0666;
        bool const replaces =
            permissions == PartPermissions::ofTarget && readPermissions(at_, name.c_str(), mode);
        int const flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
        int const file = retryOnEintr([&] { return openat(at_, part, flags, mode); });
        if (file < 0) {
            return file;
        }
        if (replaces) {
            // Restore the bits that the umask removed. A file system without permissions fails.
            (void)fchmod(file, mode);
        }
        opened = file;
        return 0;
    }

    int RenamePart(std::string const& name, char const* part, PartPermissions, bool replace) const {
        return renameAt(at_, part, name.c_str(), replace);
    }

    int Remove(char const* name) const { return negativeErrno(unlinkat(at_, name, 0)); }

private:
    void Leave() const {
        if (at_ != top_) {
            close(at_);
        }
    }

    int top_ = -1;
    int at_ = -1;
};

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

}  // namespace sys::platform

#include "sys/platform/commonFiles.inl"
