#pragma once

#include <optional>

#include "core/archive/StreamDescriptor.h"
#include "core/stream/Stream.h"

namespace core {

/// The data of one file of an archive, unscrambled; for reading only.
class ArchivedFileStream : public Stream {
public:
    /// The CRC-32 of the archive up to the file's data, and up to their end.
    struct RunningCrc {
        unsigned before;
        unsigned after;
    };

    /// Reads archive, in which all data begin at dataStart; it must contain the data of file. Both
    /// must outlive the stream. If expected is given, data read from start to end must take the CRC
    /// from before to after: otherwise the last read returns -EBUSY, also when it is repeated.
    ArchivedFileStream(Stream& archive, long long dataStart, StreamDescriptor const& file,
                       std::optional<RunningCrc> const& expected = {});

    char const* ClassName() const override;

    int Read(void* buffer, int count) override;
    /// Always -EBADF.
    int Write(void const* data, int count) override;
    long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin) override;
    long long Size() override { return size_; }

private:
    bool Matches(void const* bytes, int length);

    Stream& archive_;
    StreamDescriptor const& file_;
    long long const begin_;
    long long const size_;
    std::optional<RunningCrc> const expected_;
    long long position_ = 0;
    long long summed_ = 0;  ///< bytes from the start that crc_ includes
    unsigned crc_ = 0;
};

}  // namespace core
