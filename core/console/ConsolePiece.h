#pragma once

#include <string_view>

namespace core {

/// A stretch of plain text and the control sequence behind it: ESC "[", digits and semicolons, and
/// one character, the command. An ESC before anything but "[" is plain text.
struct ConsolePiece {
    std::string_view plain;
    std::string_view parameters;
    /// NUL in the last piece: the text ends with plain, or inside a sequence, which is dropped.
    char command = '\0';

    /// Takes the first piece off the front of text. The views are into text.
    static ConsolePiece TakeFrom(std::string_view& text);
};

}  // namespace core
