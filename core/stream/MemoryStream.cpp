#include "core/stream/MemoryStream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

namespace core {

char const* MemoryStream::ClassName() const {
    return "MemoryStream";
}

int MemoryStream::Read(void* buffer, int count) {
    long long const available = content_.GetSize() - position_;
    if (count < 1 || available < 1) {
        return 0;
    }
    int const copied = static_cast<int>(std::min<long long>(count, available));
    std::memcpy(buffer, content_.GetData() + position_, static_cast<std::size_t>(copied));
    position_ += copied;
    return copied;
}

int MemoryStream::Write(void const* data, int count) {
    if (count < 1) {
        return 0;
    }
    if (position_ >= INT_MAX) {
        return -EFBIG;
    }
    int const start = static_cast<int>(position_);
    int const written = std::min(count, INT_MAX - start);
    try {
        content_.SetSize(std::max(content_.GetSize(), start + written));
    } catch (std::bad_alloc const&) {
        return -ENOMEM;
    }
    std::memcpy(content_.GetData() + start, data, static_cast<std::size_t>(written));
    position_ += written;
    return written;
}

long long MemoryStream::Seek(long long offset, SeekOrigin origin) {
    long long const target = seekPosition(offset, origin, position_, content_.GetSize());
    if (target >= 0) {
        position_ = target;
    }
    return target;
}

long long MemoryStream::Size() {
    return content_.GetSize();
}

void MemoryStream::Clear() {
    content_.Clear();
    position_ = 0;
}

}  // namespace core
