#pragma once

#include "core/text/String.h"

namespace core {

/// Whether the code point is a control character, changes the direction of the text after it, or
/// ends a line.
bool isControl(char32_t point);

/// Returns text with "?" for every control character (see isControl) and every byte that is not
/// UTF-8. All text from outside goes through it on its way to a terminal: file names, configuration
/// files, archives and peers must not control what the user sees.
[[nodiscard]] String printable(String const& text);

}  // namespace core
