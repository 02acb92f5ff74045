#pragma once

#include <string_view>

namespace core {

/// The search rule of all texts: the first occurrence of pattern at or after start, npos when
/// there is none. An empty pattern is found at the end of the text.
std::size_t findText(std::string_view text, std::string_view pattern, std::size_t start);
/// The same with the case of ASCII letters ignored.
std::size_t findTextIC(std::string_view text, std::string_view pattern, std::size_t start);
/// The last occurrence that begins at or before start, with case ignored; an empty pattern is
/// found at start or at the end of the text.
std::size_t rfindTextIC(std::string_view text, std::string_view pattern, std::size_t start);

}  // namespace core
