#include "core/console/Console.h"

namespace core {

namespace {

int const brightColors = 8;

/// Sets a number behind the ESC "[" only where it differs from the terminal's own default.
String numbered(char const* letter, int n) {
    return Console::escape(letter, n, n == 1);
}

}  // namespace

bool Console::plain_ = false;

void Console::setPlain(bool plain) {
    plain_ = plain;
}

String Console::escape(String const& letter, String const& params) {
    if (plain_) {
        return {};
    }
    return String::format("\x1B[%2%1").argi(1, letter).argi(2, params);
}

String Console::escape(String const& letter, int n, bool omit) {
    return escape(letter, omit ? String() : String::format("%1").argi(1, n));
}

String Console::sgr(int n) {
    return escape("m", n, n == 0);
}

String Console::prevLine(int n) {
    return numbered("F", n);
}

String Console::setHorzPos(int n) {
    return numbered("G", n);
}

String Console::color(Color c) {
    int const index = static_cast<int>(c);
    return sgr(index < brightColors ? 30 + index : 90 - brightColors + index);
}

String Console::color(bool reset) {
    String const defaultColor = sgr(39);
    return reset ? defaultColor + sgr(0) : defaultColor;
}

String Console::color(String const& text, Color c) {
    // The text comes last: a placeholder in it is its own, not ours.
    return String::format("%1%2%3").argi(1, color(c)).argi(3, color(false)).argi(2, text);
}

}  // namespace core
