#pragma once

#include "core/text/String.h"

namespace core {

/// Whether the code point is a control character, changes the direction of the text after it, or
/// ends a line.
bool isControl(char32_t codePoint);

/// Returns text with "?" for every control character (see isControl) and every byte that is not
/// UTF-8. Call it before printing untrusted text: file names, configuration files, archives and
/// peers must not control the user's terminal.
[[nodiscard]] String printable(String const& text);

}  // namespace core
