#include "sys/platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "sys/platform/posix/results.h"

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

}  // namespace

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

int takeStatus(int result, struct stat const& found, FileStatus& status) {
    if (result != 0) {
        return -errno;
    }
    status.size = found.st_size;
    status.type = fileTypeOf(found.st_mode);
    status.volume = found.st_dev;
    status.number = found.st_ino;
    return 0;
}

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

int syncFile(FileHandle file) {
    return retryOnEintr([&] { return fsync(descriptor(file)); });
}

int statFile(FileHandle file, FileStatus& status) {
    struct stat found {};
    return takeStatus(fstat(descriptor(file), &found), found, status);
}

int resizeFile(FileHandle file, long long size) {
    return retryOnEintr([&] { return ftruncate(descriptor(file), size); });
}

void copyPermissions(FileHandle from, FileHandle to) {
    struct stat found {};
    if (fstat(descriptor(from), &found) == 0) {
        // A file system without permissions rejects them; the file is complete all the same.
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
    return takeStatus(stat(path, &found), found, status);
}

int statEntry(char const* path, FileStatus& status) {
    struct stat found {};
    return takeStatus(lstat(path, &found), found, status);
}

int resolvePath(char const* path, std::string& resolved) {
    return takeText(realpath(path, nullptr), resolved);
}

int removeFile(char const* path) {
    return negativeErrno(unlink(path));
}

int renameFile(char const* from, char const* to, bool replace) {
    return renameFrom(AT_FDCWD, from, to, replace);
}

int renameFrom(int folder, char const* from, char const* to, bool replace) {
    if (replace) {
        return negativeErrno(renameat(folder, from, folder, to));
    }
    int const result = negativeErrno(renameat2(folder, from, folder, to, RENAME_NOREPLACE));
    if (result != -EINVAL && result != -ENOSYS) {
        return result;
    }
    // This file system cannot check and rename in one step.
    struct stat found {};
    bool const taken = fstatat(folder, to, &found, AT_SYMLINK_NOFOLLOW) == 0;
    return taken ? -EEXIST : negativeErrno(renameat(folder, from, folder, to));
}

}  // namespace sys::platform
