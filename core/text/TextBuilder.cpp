#include "core/text/TextBuilder.h"

#include <algorithm>
#include <cstring>

namespace core {

void TextBuilder::Append(std::string_view piece) {
    std::size_t count = piece.size();
    char* const place = reserve(count);
    if (count > 0) {
        std::memcpy(place, piece.data(), count);
    }
}

void TextBuilder::Append(char c, int count) {
    if (count < 1 || c == '\0') {
        return;
    }
    auto size = static_cast<std::size_t>(count);
    char* const place = reserve(size);
    std::memset(place, c, size);
}

void TextBuilder::AppendAligned(std::string_view text, int width, String::Align align, char fill) {
    auto const length = static_cast<int>(text.size());
    int const missing = std::max(std::min(width, String::MaxWidth) - length, 0);
    int front = 0;
    if (align == String::AlignRight) {
        front = missing;
    } else if (align == String::AlignCenter) {
        front = missing - missing / 2;
    }
    // Bytes are signed here as in comparisons, so that half of a multi-byte character is no fill.
    char const padding = static_cast<signed char>(fill) < ' ' ? ' ' : fill;
    Append(padding, front);
    Append(text);
    Append(padding, missing - front);
}

String TextBuilder::AsString() const {
    String result;
    result.setPieces(View());
    return result;
}

/// Makes room for count more characters, fewer when the text would get too long, and counts them
/// as part of the text.
char* TextBuilder::reserve(std::size_t& count) {
    count = std::min(count, static_cast<std::size_t>(String::MaxLength) - size_);
    if (size_ + count > room_) {
        room_ = std::max(size_ + count, 2 * room_);
        std::unique_ptr<char[]> larger(new char[room_]);
        std::memcpy(larger.get(), data_, size_);
        far_ = std::move(larger);
        data_ = far_.get();
    }
    char* const place = data_ + size_;
    size_ += count;
    return place;
}

}  // namespace core
