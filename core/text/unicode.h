#pragma once

#include <string>
#include <string_view>

namespace core::unicode {

/// What stands for a character that cannot be read.
inline constexpr char32_t replacement = 0xFFFD;

/// Takes the first character off a UTF-8 text that is not empty. False when it begins with none
/// (an overlong form, a surrogate, a number past 0x10FFFF, a sequence cut short); then one byte is
/// taken off and point is the replacement character.
bool takePoint(std::string_view& utf8, char32_t& point);

/// Appends a character; point must be one.
void appendPoint(char32_t point, std::string& utf8);

/// Returns the text in simple case folding: equal for texts that differ only in case. Bytes that
/// are not UTF-8 become replacement characters.
[[nodiscard]] std::string foldCase(std::string_view utf8);

}  // namespace core::unicode
