#include "core/text/TextBuilder.h"

#include <algorithm>
#include <cstring>

namespace core {

void TextBuilder::Append(char c, int count) {
    if (count < 1 || c == '\0') {
        return;
    }
    std::size_t const size = std::min(static_cast<std::size_t>(count), String::MaxLength - size_);
    Reserve(size);
    std::memset(data_ + size_, c, size);
    size_ += size;
}

void TextBuilder::AppendAligned(std::string_view text, int width, String::Align align, char fill) {
    auto const length = static_cast<int>(text.size());
    int const missing = std::max(std::min(width, String::MaxWidth) - length, 0);
    int leading = 0;
    if (align == String::AlignRight) {
        leading = missing;
    } else if (align == String::AlignCenter) {
        leading = missing - missing / 2;
    }
    // Signed, as in comparisons: half of a multi-byte character is not a fill character.
    char const padding = static_cast<signed char>(fill) < ' ' ? ' ' : fill;
    Append(padding, leading);
    Append(text);
    Append(padding, missing - leading);
}

String TextBuilder::AsString() const {
    return String(View());
}

void TextBuilder::Grow(std::size_t count) {
    capacity_ = std::max(size_ + count, 2 * capacity_);
    std::unique_ptr<char[]> larger(new char[capacity_]);
    std::memcpy(larger.get(), data_, size_);
    heap_ = std::move(larger);
    data_ = heap_.get();
}

}  // namespace core
