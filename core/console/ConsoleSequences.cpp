#include "core/console/Console.h"

namespace core {

namespace {

int const basicColors = 8;

/// Returns a sequence that omits the number if it is 1, the terminal's default.
String numbered(String const& letter, int n) {
    return Console::escape(letter, n, n == 1);
}

template <class Erase>
String erase(char const* letter, Erase what) {
    // Any value but the first two erases all.
    int const n = what == Erase::toEnd ? 0 : what == Erase::toStart ? 1 : 2;
    return Console::escape(letter, n, n == 0);
}

/// The codes of the first eight colours begin at base, those of the bright ones at bright.
String colorOf(int base, int bright, Console::Color c) {
    int const index = static_cast<int>(c);
    return Console::sgr(index < basicColors ? base + index : bright + index - basicColors);
}

String defaultColor(int code, bool reset) {
    String const sequence = Console::sgr(code);
    return reset ? sequence + Console::reset() : sequence;
}

String trueColor(int code, unsigned char r, unsigned char g, unsigned char b) {
    return Console::sgr(code, String::format("2;%1;%2;%3").argi(1, r).argi(2, g).argi(3, b));
}

String grey(int code, unsigned char level) {
    return Console::sgr(code, String::format("5;%1").argi(1, 232 + level * 3 / 32));
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

String Console::sgr(int n, String const& more) {
    return escape("m", String::format("%1;%2").argi(1, n).argi(2, more));
}

String Console::cursor(Direction d, int n) {
    return numbered(String::OfChar(static_cast<char>('A' + static_cast<int>(d)), 1), n);
}

String Console::prevLine(int n) {
    return numbered("F", n);
}

String Console::nextLine(int n) {
    return numbered("E", n);
}

String Console::setHorzPos(int n) {
    return numbered("G", n);
}

String Console::setPos(int row, int column) {
    String const first = row == 1 ? String() : String::format("%1").argi(1, row);
    return escape("H", column == 1 ? first : first + String::format(";%1").argi(1, column));
}

String Console::eraseScreen(EraseScreen e) {
    return erase("J", e);
}

String Console::eraseLine(EraseLine e) {
    return erase("K", e);
}

String Console::scrollUp(int n) {
    return numbered("S", n);
}

String Console::scrollDown(int n) {
    return numbered("T", n);
}

String Console::saveCursorPos() {
    return escape("s", "");
}

String Console::restoreCursorPos() {
    return escape("u", "");
}

String Console::reset() {
    return sgr(0);
}

String Console::bold(bool on) {
    return sgr(on ? 1 : 21);
}

String Console::underline(bool on) {
    return sgr(on ? 4 : 24);
}

String Console::blink(Blink b) {
    return sgr(b == Blink::slow ? 5 : b == Blink::fast ? 6 : 25);
}

String Console::invert(bool on) {
    return sgr(on ? 7 : 27);
}

String Console::font(unsigned n) {
    return n <= 9 ? sgr(10 + static_cast<int>(n)) : String();
}

String Console::color(Color c) {
    return colorOf(30, 90, c);
}

String Console::background(Color c) {
    return colorOf(40, 100, c);
}

String Console::color(bool reset) {
    return defaultColor(39, reset);
}

String Console::background(bool reset) {
    return defaultColor(49, reset);
}

String Console::color(unsigned char r, unsigned char g, unsigned char b) {
    return trueColor(38, r, g, b);
}

String Console::background(unsigned char r, unsigned char g, unsigned char b) {
    return trueColor(48, r, g, b);
}

String Console::color(unsigned char level) {
    return grey(38, level);
}

String Console::background(unsigned char level) {
    return grey(48, level);
}

int Console::rgb2index(unsigned char r, unsigned char g, unsigned char b) {
    return 16 + 36 * (r * 3 / 128) + 6 * (g * 3 / 128) + b * 3 / 128;
}

String Console::color(String const& text, Color c) {
    // The text comes last: a placeholder in it must stay.
    return String::format("%1%2%3").argi(1, color(c)).argi(3, color(false)).argi(2, text);
}

}  // namespace core
