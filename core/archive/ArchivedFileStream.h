#pragma once

#include "core/archive/StreamDescriptor.h"
#include "core/stream/Stream.h"

namespace core {

/// The data of one file of an archive, unscrambled; for reading only.
class ArchivedFileStream : public Stream {
public:
    /// Reads archive, in which all data begin at dataStart; the data of file must lie in it. Both
    /// must outlive the stream.
    ArchivedFileStream(Stream& archive, long long dataStart, StreamDescriptor const& file);

    char const* ClassName() const override;

    int Read(void* buffer, int count) override;
    /// Always -EBADF.
    int Write(void const* data, int count) override;
    long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin) override;
    long long Size() override { return size_; }

private:
    Stream& archive_;
    StreamDescriptor const& file_;
    long long const begin_;
    long long const size_;
    long long position_ = 0;
};

}  // namespace core
