#pragma once

#include <string_view>

#include "core/text/String.h"
#include "sys/platform/Screen.h"

namespace core {

/// Writes text to a screen and carries out the control sequences in it by the screen's calls. What
/// means nothing here, or cannot be done, is dropped without a sound; text is always written.
///
/// The attribute that sequences have chosen and the saved cursor position belong to the process,
/// not to the screen: standard output and standard error mostly show on the same one.
class ConsoleInterpreter {
public:
    /// Keeps the screen, which stays the caller's.
    explicit ConsoleInterpreter(sys::Screen& screen) : screen_(screen) {}

    /// With a line feed behind the text when newline is set.
    void Write(std::string_view text, bool newline);

private:
    /// parameters: digits and semicolons, perhaps none.
    void execute(char command, String const& parameters);
    void moveCursor(char command, String const& parameters);
    void moveTo(long long row, long long column);
    void eraseScreen(int what);
    void eraseLine(int what);
    void blank(sys::Screen::Position from, int count);
    void scroll(int rows);
    void setRendition(String codes);
    void saveCursor();

    sys::Screen& screen_;
};

}  // namespace core
