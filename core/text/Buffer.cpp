#include "core/text/Buffer.h"

#include <algorithm>
#include <climits>

namespace core {

void Buffer::Set(void const* data, int size) {
    Buffer fresh;
    fresh.Append(data, size);
    bytes_.swap(fresh.bytes_);
}

void Buffer::Append(void const* data, int size) {
    if (data == nullptr || size < 1) {
        return;
    }
    auto const* const first = static_cast<unsigned char const*>(data);
    std::size_t const room = static_cast<std::size_t>(INT_MAX) - bytes_.size();
    std::size_t const count = std::min(static_cast<std::size_t>(size), room);
    // A copy first: data may lie within this buffer.
    std::vector<unsigned char> const piece(first, first + count);
    bytes_.insert(bytes_.end(), piece.begin(), piece.end());
}

void Buffer::Append(Buffer const& other) {
    Append(other.GetData(), other.GetSize());
}

void Buffer::SetSize(int size) {
    bytes_.resize(static_cast<std::size_t>(std::max(size, 0)));
}

}  // namespace core
