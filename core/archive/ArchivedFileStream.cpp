#include "core/archive/ArchivedFileStream.h"

#include <algorithm>
#include <cerrno>

#include "core/crc/crc32.h"

namespace core {

ArchivedFileStream::ArchivedFileStream(Stream& archive, long long dataStart,
                                       StreamDescriptor const& file,
                                       std::optional<RunningCrc> const& expected)
    : archive_(archive),
      file_(file),
      begin_(dataStart + static_cast<long long>(file.GetOffset())),
      size_(static_cast<long long>(file.GetSize())),
      expected_(expected) {}

char const* ArchivedFileStream::ClassName() const {
    return "ArchivedFileStream";
}

int ArchivedFileStream::Read(void* buffer, int count) {
    if (count < 1 || position_ >= size_) {
        return 0;
    }
    // Other streams of the archive have moved its position.
    long long const found = archive_.Seek(begin_ + position_);
    if (found < 0) {
        return static_cast<int>(found);
    }
    int const wanted = static_cast<int>(std::min<long long>(count, size_ - position_));
    int const got = archive_.Read(buffer, wanted);
    if (got > 0 && !Matches(buffer, got)) {
        return -EBUSY;
    }
    if (got > 0) {
        file_.CryptBlock(buffer, got, static_cast<unsigned long long>(position_));
        position_ += got;
    }
    // The archive contained the whole file when it was read: it has been truncated since.
    return got == 0 ? -EIO : got;
}

/// Adds the next bytes of the archive to the CRC. Returns false if they complete the file's data
/// with another CRC than when the archive was read; a repeated read then fails again.
bool ArchivedFileStream::Matches(void const* bytes, int length) {
    if (!expected_) {
        return true;
    }
    if (position_ == 0) {
        summed_ = 0;
        crc_ = expected_->before;
    }
    if (position_ != summed_) {
        return true;
    }
    unsigned const crc = crc32::update(bytes, length, crc_);
    if (summed_ + length == size_ && crc != expected_->after) {
        return false;
    }
    crc_ = crc;
    summed_ += length;
    return true;
}

int ArchivedFileStream::Write(void const*, int) {
    return -EBADF;
}

long long ArchivedFileStream::Seek(long long offset, SeekOrigin origin) {
    long long const found = seekPosition(offset, origin, position_, size_);
    if (found >= 0) {
        position_ = found;
    }
    return found;
}

}  // namespace core
