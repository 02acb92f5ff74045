#pragma once

#include "core/stream/Stream.h"
#include "sys/platform/Files.h"

namespace core {

/// A stream over an open file of the platform, which it owns and closes.
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
    /// Drops what lies behind size bytes: 0, or a negative error code.
    int Truncate(long long size);

    /// The status of the open file: 0, or a negative error code.
    int Stat(sys::platform::FileStatus& status) const;
    /// Closes the file: 0, or a negative error code. Without an open file nothing happens.
    int Close();
    bool IsOpened() const;
    /// Gives the open file the access rights of other's, as far as its file system knows any.
    void CopyPermissionsFrom(HandleStream const& other);

protected:
    /// Takes over a handle in the place of the one held so far, which is closed.
    void Adopt(sys::platform::FileHandle handle);

private:
    sys::platform::FileHandle handle_ = sys::platform::noFile;
};

}  // namespace core
