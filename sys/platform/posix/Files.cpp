#include "sys/platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace sys::platform {

namespace {

int openFlags(unsigned mode) {
    // Non-blocking: opening a pipe that nobody writes to must not hang. Regular files ignore it.
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    bool const reads = (mode & openRead) != 0;
    bool const writes = (mode & openWrite) != 0;
    flags |= reads && writes ? O_RDWR : (writes ? O_WRONLY : O_RDONLY);
    flags |= (mode & openCreate) != 0 ? O_CREAT : 0;
    flags |= (mode & openTruncate) != 0 ? O_TRUNC : 0;
    flags |= (mode & openAppend) != 0 ? O_APPEND : 0;
    return flags;
}

int descriptor(FileHandle file) {
    return static_cast<int>(file);
}

/// Runs a call again for as long as a signal interrupts it; its result or the negative errno.
template <class Call>
int withoutInterruption(Call call) {
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

}  // namespace

int openFile(char const* path, unsigned mode, FileHandle& opened) {
    int const file = withoutInterruption([&] { return open(path, openFlags(mode), 0666); });
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

int readFile(FileHandle file, void* buffer, int count) {
    if (count < 1) {
        return 0;
    }
    return withoutInterruption(
        [&] { return read(descriptor(file), buffer, static_cast<std::size_t>(count)); });
}

int writeFile(FileHandle file, void const* data, int count) {
    if (count < 1) {
        return 0;
    }
    return withoutInterruption(
        [&] { return write(descriptor(file), data, static_cast<std::size_t>(count)); });
}

int statFile(FileHandle file, FileStatus& status) {
    struct stat found {};
    if (fstat(descriptor(file), &found) != 0) {
        return -errno;
    }
    status.size = found.st_size;
    status.type = S_ISREG(found.st_mode)   ? FileType::regular
                  : S_ISDIR(found.st_mode) ? FileType::directory
                                           : FileType::other;
    return 0;
}

int closeFile(FileHandle file) {
    // Not repeated after EINTR: the descriptor is already gone and may be somebody else's by now.
    return close(descriptor(file)) == 0 ? 0 : -errno;
}

int removeFile(char const* path) {
    return unlink(path) == 0 ? 0 : -errno;
}

}  // namespace sys::platform
