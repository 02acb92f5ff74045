#pragma once

#include <string_view>

#include "core/text/TextBuilder.h"

namespace core::unicode {

/// Replaces a character that cannot be decoded: U+FFFD.
inline constexpr char32_t replacement = 0xFFFD;

/// Removes the first code point from UTF-8 text that is not empty and stores it. Returns false if
/// the text begins with an invalid or truncated sequence (an overlong form, a surrogate and a value
/// above 0x10FFFF are invalid): then removes one byte and stores the replacement character.
bool decodeCodePoint(std::string_view& utf8, char32_t& codePoint);

/// Appends a valid code point in UTF-8.
void appendCodePoint(char32_t codePoint, TextBuilder& utf8);

/// Returns the text in simple case folding, which is equal for texts that differ only in case.
/// Invalid bytes become replacement characters; the result ends at the first NUL.
[[nodiscard]] String foldCase(std::string_view utf8);

}  // namespace core::unicode
