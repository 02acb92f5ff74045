#pragma once

#include <memory>
#include <string_view>

#include "core/text/String.h"

namespace core {

/// Builds a String from parts, without allocating while it is short. Discards what exceeds
/// String::MaxLength.
class TextBuilder {
public:
    TextBuilder() = default;
    TextBuilder(TextBuilder const&) = delete;
    TextBuilder& operator=(TextBuilder const&) = delete;

    /// Appends a part. View() then contains its NUL characters, if any; AsString() ends at the
    /// first.
    void Append(std::string_view part) {
        part = part.substr(0, String::MaxLength - size_);
        Reserve(part.size());
        part.copy(data_ + size_, part.size());
        size_ += part.size();
    }
    /// Appends c count times; nothing if count is below 1 or c is NUL.
    void Append(char c, int count = 1);
    /// Appends text padded to width as String::GetAligned does.
    void AppendAligned(std::string_view text, int width, String::Align align, char fill);

    /// Removes everything but keeps the capacity.
    void Clear() { size_ = 0; }

    /// The parts so far; valid until the next change.
    std::string_view View() const { return {data_, size_}; }
    [[nodiscard]] String AsString() const;

private:
    /// Ensures capacity for count more characters.
    void Reserve(std::size_t count) {
        if (count > capacity_ - size_) {
            Grow(count);
        }
    }
    void Grow(std::size_t count);

    char inline_[256];
    std::unique_ptr<char[]> heap_;
    char* data_ = inline_;
    std::size_t size_ = 0;
    std::size_t capacity_ = sizeof inline_;
};

}  // namespace core
