#include <initializer_list>
#include <string>
#include <string_view>

#include "core/console/Console.h"
#include "core/text/TextBuilder.h"

namespace core {

namespace {

int const basicColors = 8;

bool isPlain = false;

// Usage screens consist of many sequences: without intermediate strings, programs start faster.
String joined(std::initializer_list<std::string_view> parts) {
    TextBuilder text;
    for (std::string_view const part : parts) {
        text.Append(part);
    }
    return text.AsString();
}

String sequence(std::string_view letter, std::string_view params) {
    return isPlain ? String() : joined({"\x1B[", params, letter});
}

String sequence(std::string_view letter, int n, bool omit) {
    return sequence(letter, omit ? std::string() : std::to_string(n));
}

/// Returns a sequence that omits the number if it is 1, the terminal's default.
String numbered(std::string_view letter, int n) {
    return sequence(letter, n, n == 1);
}

template <class Erase>
String erase(std::string_view letter, Erase what) {
    // Any value but the first two erases all.
    int const n = what == Erase::toEnd ? 0 : what == Erase::toStart ? 1 : 2;
    return sequence(letter, n, n == 0);
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

void Console::setPlain(bool plain) {
    isPlain = plain;
}

String Console::escape(String const& letter, String const& params) {
    return sequence(letter.View(), params.View());
}

String Console::escape(String const& letter, int n, bool omit) {
    return sequence(letter.View(), n, omit);
}

String Console::sgr(int n) {
    return sequence("m", n, n == 0);
}

String Console::sgr(int n, String const& more) {
    return escape("m", String::format("%1;%2").argi(1, n).argi(2, more));
}

String Console::cursor(Direction d, int n) {
    char const letter = static_cast<char>('A' + static_cast<int>(d));
    return numbered({&letter, 1}, n);
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
    return joined({color(c).View(), text.View(), color(false).View()});
}

}  // namespace core
