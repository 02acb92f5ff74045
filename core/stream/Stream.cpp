#include "core/stream/Stream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

namespace core {

namespace {

int const copyPieceSize = 0x10000;

bool isBlank(char const* piece, int count) {
    return piece[0] == '\0' &&
           std::memcmp(piece, piece + 1, static_cast<std::size_t>(count - 1)) == 0;
}

/// Takes the pieces of a copy: writes them, or skips the blank ones where holes are wanted.
class PieceWriter {
public:
    PieceWriter(Stream& target, bool sparse) : target_(target), sparse_(sparse) {}

    int Take(char const* piece, int count) {
        endsInHole_ = sparse_ && isBlank(piece, count);
        return endsInHole_ ? seek(count) : target_.WriteAll(piece, count);
    }

    /// A hole at the end is no part of a file until something stands behind it.
    int Finish() {
        if (!endsInHole_) {
            return 0;
        }
        int const result = seek(-1);
        return result == 0 ? target_.WriteAll("", 1) : result;
    }

private:
    int seek(int offset) {
        long long const position = target_.Seek(offset, Stream::SeekOrigin::current);
        return position < 0 ? static_cast<int>(position) : 0;
    }

    Stream& target_;
    bool sparse_;
    bool endsInHole_ = false;
};

/// The bytes between the position and the end; -1 when the stream does not know.
long long bytesLeft(Stream& stream) {
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
            // A file that takes nothing and names no reason would keep us here for ever.
            return written < 0 ? written : -EIO;
        }
        done += written;
    }
    return 0;
}

long long Stream::CopyTo(Stream& target, bool sparse, bool sync, ICopyCallback* callback) {
    long long const total = callback != nullptr ? bytesLeft(*this) : -1;
    std::vector<char> piece(copyPieceSize);
    PieceWriter writer(target, sparse);
    for (long long done = 0;;) {
        if (callback != nullptr && !callback->Copied(done, total)) {
            return -ECANCELED;
        }
        int const got = Read(piece.data(), copyPieceSize);
        if (got < 0) {
            return got;
        }
        if (got == 0) {
            int const finished = writer.Finish();
            int const result = finished == 0 && sync ? target.Sync() : finished;
            return result == 0 ? done : result;
        }
        int const result = writer.Take(piece.data(), got);
        if (result != 0) {
            return result;
        }
        done += got;
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
