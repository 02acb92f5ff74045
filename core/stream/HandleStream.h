#pragma once

#include "core/stream/Stream.h"
#include "sys/platform/Files.h"

namespace core {

/// A stream of an open file, which it owns and closes.
class HandleStream : public Stream {
public:
    HandleStream() = default;
    HandleStream(HandleStream const&) = delete;
    HandleStream& operator=(HandleStream const&) = delete;
    ~HandleStream() override;

    char const* ClassName() const override;

    int Read(void* buffer, int count) override;
    int Write(void const* data, int count) override;
    long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin) override;
    long long Size() override;
    int Sync() override;
    /// Sets the size of the file. Returns 0 or a negative errno value.
    int Truncate(long long size);

    /// Locks the file until it is closed: see sys::platform::lockFile. Returns 0 or a negative
    /// errno value.
    int Lock();
    /// Stores the status of the open file. Returns 0 or a negative errno value.
    int Stat(sys::platform::FileStatus& status) const;
    /// Closes the file, if one is open. Returns 0 or a negative errno value.
    int Close();
    bool IsOpened() const;
    /// Sets the permissions of the open file to those of other's, where the file system supports
    /// them. Errors are ignored.
    void CopyPermissionsFrom(HandleStream const& other);

protected:
    /// Closes the current handle and takes ownership of this one.
    void Adopt(sys::platform::FileHandle handle);

private:
    sys::platform::FileHandle handle_ = sys::platform::noFile;
};

}  // namespace core
