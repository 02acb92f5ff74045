#include "core/text/Buffer.h"

#include <algorithm>
#include <climits>

namespace core {

void Buffer::Set(void const* data, int size) {
    Buffer replaced;
    replaced.Append(data, size);
    bytes_.swap(replaced.bytes_);
}

void Buffer::Append(void const* data, int size) {
    if (data == nullptr || size < 1) {
        return;
    }
    auto const* const first = static_cast<unsigned char const*>(data);
    std::size_t const space = static_cast<std::size_t>(INT_MAX) - bytes_.size();
    std::size_t const count = std::min(static_cast<std::size_t>(size), space);
    // Copy first: data may point into this buffer.
    std::vector<unsigned char> const copy(first, first + count);
    bytes_.insert(bytes_.end(), copy.begin(), copy.end());
}

void Buffer::Append(Buffer const& other) {
    Append(other.GetData(), other.GetSize());
}

void Buffer::SetSize(int size) {
    bytes_.resize(static_cast<std::size_t>(std::max(size, 0)));
}

}  // namespace core
