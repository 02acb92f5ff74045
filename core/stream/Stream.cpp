#include "core/stream/Stream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

namespace core {

namespace {

int const copyChunkSize = 0x10000;

bool isAllNul(char const* chunk, int count) {
    return chunk[0] == '\0' &&
           std::memcmp(chunk, chunk + 1, static_cast<std::size_t>(count - 1)) == 0;
}

/// Writes the chunks of a copy, or seeks over those of NUL if sparse.
class ChunkWriter {
public:
    ChunkWriter(Stream& target, bool sparse) : target_(target), sparse_(sparse) {}

    int Write(char const* chunk, int count) {
        endsInHole_ = sparse_ && isAllNul(chunk, count);
        return endsInHole_ ? Skip(count) : target_.WriteAll(chunk, count);
    }

    /// Writes the last byte if the copy ends in a hole: seeking alone does not extend a file.
    int Finish() {
        if (!endsInHole_) {
            return 0;
        }
        int const result = Skip(-1);
        return result == 0 ? target_.WriteAll("", 1) : result;
    }

private:
    int Skip(int offset) {
        long long const position = target_.Seek(offset, Stream::SeekOrigin::current);
        return position < 0 ? static_cast<int>(position) : 0;
    }

    Stream& target_;
    bool sparse_;
    bool endsInHole_ = false;
};

/// Returns the number of bytes after the position, or -1 if it is unknown.
long long remainingBytes(Stream& stream) {
    long long const size = stream.Size();
    long long const position = stream.Tell();
    return size < 0 || position < 0 ? -1 : std::max(size - position, 0LL);
}

}  // namespace

char const* Stream::ClassName() const {
    return "Stream";
}

long long Stream::Seek(long long /*offset*/, SeekOrigin /*origin*/) {
    return -ESPIPE;
}

long long Stream::Size() {
    return -ESPIPE;
}

int Stream::Sync() {
    return 0;
}

int Stream::WriteAll(void const* data, int count) {
    auto const* bytes = static_cast<char const*>(data);
    for (int done = 0; done < count;) {
        int const written = Write(bytes + done, count - done);
        if (written < 1) {
            // Do not retry a write of 0 bytes without an error: that could loop forever.
            return written < 0 ? written : -EIO;
        }
        done += written;
    }
    return 0;
}

long long Stream::CopyTo(Stream& target, CopyOptions const& options) {
    ICopyCallback* const callback = options.callback;
    long long const total = callback != nullptr ? remainingBytes(*this) : -1;
    std::vector<char> chunk(copyChunkSize);
    ChunkWriter writer(target, options.sparse);
    for (long long done = 0;;) {
        if (callback != nullptr && !callback->Copied(done, total)) {
            return -ECANCELED;
        }
        int const received = Read(chunk.data(), copyChunkSize);
        if (received < 0) {
            return received;
        }
        if (received == 0) {
            int const finished = writer.Finish();
            int const result = finished == 0 && options.sync ? target.Sync() : finished;
            return result == 0 ? done : result;
        }
        int const result = writer.Write(chunk.data(), received);
        if (result != 0) {
            return result;
        }
        done += received;
    }
}

long long seekPosition(long long offset, sys::platform::SeekOrigin origin, long long position,
                       long long size) {
    using sys::platform::SeekOrigin;
    long long const from = origin == SeekOrigin::begin     ? 0
                           : origin == SeekOrigin::current ? position
                                                           : size;
    if (offset < -from) {
        return -EINVAL;
    }
    return offset > LLONG_MAX - from ? -EOVERFLOW : from + offset;
}

}  // namespace core
