#pragma once

#include <string_view>

#include "core/text/String.h"
#include "sys/platform/Terminal.h"

namespace core {

/// Plain text and the control sequence after it: ESC "[", digits and semicolons, and one character,
/// the command. An ESC before any other character is plain text.
struct ConsoleSegment {
    std::string_view plain;
    std::string_view parameters;
    /// NUL in the last segment: the text ends with plain or with a truncated sequence, which is
    /// ignored.
    char command = '\0';

    /// Removes the first segment from text and returns it. Its views are into text.
    static ConsoleSegment ParseNext(std::string_view& text);
};

/// Writes text to a screen and executes the control sequences in it by the screen's calls.
/// Unsupported or failing sequences are ignored; text is always written.
///
/// The attribute that sequences have set and the saved cursor position belong to the process, not
/// to the screen: standard output and standard error usually share one.
class ConsoleInterpreter {
public:
    /// The screen must outlive this object.
    explicit ConsoleInterpreter(sys::Screen& screen) : screen_(screen) {}

    /// Writes text, then a line feed if newline is set.
    void Write(std::string_view text, bool newline);

private:
    void Execute(char command, String const& parameters);
    void MoveCursor(char command, String const& parameters);
    void MoveTo(long long row, long long column);
    void EraseScreen(int what);
    void EraseLine(int what);
    void Erase(sys::Screen::Position from, int count);
    void Scroll(int rows);
    void SetRendition(String codes);
    void SaveCursor();

    sys::Screen& screen_;
};

}  // namespace core
