#pragma once

#include <memory>
#include <string_view>

#include "core/text/String.h"

namespace core {

/// Collects the pieces of a text and gives them as one String. A short text costs no allocation
/// until then. Whatever exceeds String::MaxLength is dropped.
class TextBuilder {
public:
    TextBuilder() = default;
    TextBuilder(TextBuilder const&) = delete;
    TextBuilder& operator=(TextBuilder const&) = delete;

    /// The piece must hold no NUL.
    void Append(std::string_view piece);
    void Append(char c, int count = 1);
    /// The text padded as String::GetAligned does, a fill below 32 meaning space.
    void AppendAligned(std::string_view text, int width, String::Align align, char fill);

    /// What was collected, valid until the next Append.
    std::string_view View() const { return {data_, size_}; }
    [[nodiscard]] String AsString() const;

private:
    char* reserve(std::size_t& count);

    char near_[256];
    std::unique_ptr<char[]> far_;
    char* data_ = near_;
    std::size_t size_ = 0;
    std::size_t room_ = sizeof near_;
};

}  // namespace core
