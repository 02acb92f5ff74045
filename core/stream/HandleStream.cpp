#include "core/stream/HandleStream.h"

#include <cerrno>

#include "core/stream/FileStream.h"

namespace core {

namespace platform = sys::platform;

HandleStream::~HandleStream() {
    Close();
}

char const* HandleStream::ClassName() const {
    return "HandleStream";
}

int HandleStream::Read(void* buffer, int count) {
    return IsOpened() ? platform::readFile(handle_, buffer, count) : -EBADF;
}

int HandleStream::Write(void const* data, int count) {
    return IsOpened() ? platform::writeFile(handle_, data, count) : -EBADF;
}

long long HandleStream::Seek(long long offset, SeekOrigin origin) {
    return IsOpened() ? platform::seekFile(handle_, offset, origin) : -EBADF;
}

long long HandleStream::Size() {
    platform::FileStatus status;
    int const result = Stat(status);
    if (result != 0) {
        return result;
    }
    return status.type == platform::FileType::regular ? status.size : -ESPIPE;
}

int HandleStream::Sync() {
    return IsOpened() ? platform::syncFile(handle_) : -EBADF;
}

int HandleStream::Truncate(long long size) {
    return IsOpened() ? platform::resizeFile(handle_, size) : -EBADF;
}

int HandleStream::Lock() {
    return IsOpened() ? platform::lockFile(handle_) : -EBADF;
}

int HandleStream::Stat(platform::FileStatus& status) const {
    return IsOpened() ? platform::statFile(handle_, status) : -EBADF;
}

int HandleStream::Close() {
    if (!IsOpened()) {
        return 0;
    }
    platform::FileHandle const closing = handle_;
    handle_ = platform::noFile;
    return platform::closeFile(closing);
}

bool HandleStream::IsOpened() const {
    return handle_ != platform::noFile;
}

void HandleStream::CopyPermissionsFrom(HandleStream const& other) {
    if (IsOpened() && other.IsOpened()) {
        platform::copyPermissions(other.handle_, handle_);
    }
}

void HandleStream::Adopt(platform::FileHandle handle) {
    Close();
    handle_ = handle;
}

char const* FileStream::ClassName() const {
    return "FileStream";
}

int FileStream::Open(String const& path, unsigned mode) {
    Close();
    platform::FileHandle opened = platform::noFile;
    int const result = platform::openFile(path.getCString(), mode, opened);
    if (result == 0) {
        Adopt(opened);
    }
    return result;
}

}  // namespace core
