#include "core/console/ConsoleInterpreter.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string_view>
#include <utility>

namespace core {

namespace {

using Info = sys::Screen::Info;
using Position = sys::Screen::Position;

// Atomic: concurrent writers may mix colours, nothing worse.
std::atomic<std::uint16_t> currentAttribute{7};
std::atomic<std::int16_t> savedColumn{0};
std::atomic<std::int16_t> savedRow{0};

int numberOr(int missing, String const& parameters) {
    return parameters.IsEmpty() ? missing : parameters.ToDecimal32();
}

constexpr std::uint16_t initial = 0x0007;
constexpr std::uint16_t intensity = 0x0008;
constexpr std::uint16_t reverse = 0x4000;
constexpr std::uint16_t underscore = 0x8000;
constexpr std::uint16_t allBits = 0xFFFF;

/// The codes from first to last clear some bits and then set others.
struct Change {
    int first;
    int last;
    std::uint16_t cleared;
    std::uint16_t set;
};
// Without 21, although Console::bold(false) writes it: on these screens bold ends with 22, 2 or 0,
// and programs rely on that.
constexpr Change changes[] = {
    {0, 0, allBits, initial},
    {1, 1, 0, intensity},
    {2, 2, intensity, 0},
    // Shows italics in reverse video: the console has no italics.
    {3, 3, 0, reverse},
    {4, 4, 0, underscore},
    {7, 7, 0, reverse},
    // Fonts: the console has only one, but the attribute is applied all the same.
    {10, 19, 0, 0},
    {22, 22, intensity, 0},
    {23, 23, reverse, 0},
    {24, 24, underscore, 0},
    {27, 27, reverse, 0},
};

/// The codes of the foreground or the background: from base on the eight colours, an extended
/// colour and the default colour; from bright on the eight bright colours.
struct ColorPlane {
    int base;
    int bright;
    int shift;
    int defaultColor;
};
constexpr ColorPlane colorPlanes[] = {{30, 90, 0, 7}, {40, 100, 4, 0}};

constexpr int colorCount = 8;
constexpr int lastColor = 15;

void setColor(std::uint16_t& attribute, ColorPlane const& plane, int color) {
    // The screen has 16 of the 256 colours; all others show as bright white.
    int const index = std::clamp(color, 0, lastColor);
    // Red is bit 0 in sequences and bit 2 in attributes; blue is the reverse. The intensity bit is
    // part of the colour, so each of the first eight colours ends bold.
    int const bits = (index & 0xA) | (index & 1) << 2 | (index & 4) >> 2;
    attribute =
        static_cast<std::uint16_t>((attribute & ~(0xF << plane.shift)) | bits << plane.shift);
}

/// Reads the parameters of an extended colour: "5;index", or "2;r;g;b", which the screen cannot
/// show. Empty parameters count here: the position decides the meaning of the others.
void setExtendedColor(String& codes, std::uint16_t& attribute, ColorPlane const& plane) {
    int const kind = codes.ExtractNextToken(';').ToDecimal32(-1);
    if (kind == 5) {
        int const index = codes.ExtractNextToken(';').ToDecimal32(plane.defaultColor);
        setColor(attribute, plane, index);
    }
    for (int left = kind == 2 ? 3 : 0; left > 0; --left) {
        codes.ExtractNextToken(';');
    }
}

bool changeColor(int code, String& codes, std::uint16_t& attribute) {
    for (ColorPlane const& plane : colorPlanes) {
        if (code >= plane.base && code < plane.base + colorCount) {
            setColor(attribute, plane, code - plane.base);
        } else if (code >= plane.bright && code < plane.bright + colorCount) {
            setColor(attribute, plane, code - plane.bright + colorCount);
        } else if (code == plane.base + colorCount) {
            setExtendedColor(codes, attribute, plane);
        } else if (code == plane.base + colorCount + 1) {
            setColor(attribute, plane, plane.defaultColor);
        } else {
            continue;
        }
        return true;
    }
    return false;
}

/// Removes SGR codes, which semicolons separate, up to and including the first supported one, and
/// applies that one to the attribute. Returns false if no supported code was left.
bool applyNextSgr(String& codes, std::uint16_t& attribute) {
    while (!codes.IsEmpty()) {
        // An empty code reads as -1, which is unknown.
        int const code = codes.ExtractNextToken(';').ToDecimal32(-1);
        for (Change const& change : changes) {
            if (code >= change.first && code <= change.last) {
                attribute = static_cast<std::uint16_t>((attribute & ~change.cleared) | change.set);
                return true;
            }
        }
        if (changeColor(code, codes, attribute)) {
            return true;
        }
    }
    return false;
}

}  // namespace

ConsoleSegment ConsoleSegment::ParseNext(std::string_view& text) {
    constexpr std::string_view start = "\x1B[";

    std::size_t const found = text.find(start);
    if (found == std::string_view::npos) {
        return {std::exchange(text, {}), {}, '\0'};
    }
    ConsoleSegment segment{text.substr(0, found), {}, '\0'};
    std::string_view const sequence = text.substr(found + start.size());
    std::size_t const end = sequence.find_first_not_of("0123456789;");
    if (end == std::string_view::npos) {
        text = {};
        return segment;
    }
    segment.parameters = sequence.substr(0, end);
    segment.command = sequence[end];
    text = sequence.substr(end + 1);
    return segment;
}

void ConsoleInterpreter::Write(std::string_view text, bool newline) {
    ConsoleSegment segment = ConsoleSegment::ParseNext(text);
    for (; segment.command != '\0'; segment = ConsoleSegment::ParseNext(text)) {
        if (!segment.plain.empty()) {
            screen_.Write(segment.plain);
        }
        Execute(segment.command, String(segment.parameters));
    }
    // Write the end of the line and its line feed at once, so that lines of several threads do not
    // mix.
    String rest(segment.plain);
    if (newline) {
        rest.Append('\n');
    }
    if (!rest.IsEmpty()) {
        screen_.Write(rest.View());
    }
}

void ConsoleInterpreter::Execute(char command, String const& parameters) {
    switch (command) {
        case 'A':
        case 'B':
        case 'C':
        case 'D':
        case 'E':
        case 'F':
        case 'G':
            return MoveCursor(command, parameters);
        case 'H':
        case 'f':
            // The row precedes the semicolon, if any, and the column follows it.
            return MoveTo(parameters.ToDecimal32(1) - 1,
                          parameters.RightOf(';').ToDecimal32(1) - 1);
        case 'J':
            return EraseScreen(numberOr(0, parameters));
        case 'K':
            return EraseLine(numberOr(0, parameters));
        case 'S':
            return Scroll(-numberOr(1, parameters));
        case 'T':
            return Scroll(numberOr(1, parameters));
        case 'm':
            return SetRendition(parameters.IsEmpty() ? "0" : parameters);
        case 's':
            return SaveCursor();
        case 'u':
            return screen_.SetCursor({savedColumn, savedRow});
        default:
            return;
    }
}

void ConsoleInterpreter::MoveCursor(char command, String const& parameters) {
    Info info;
    bool const valid = parameters.IsEmpty() || parameters.IsDecimal32();
    if (!valid || !screen_.Read(info)) {
        return;
    }
    long long const n = parameters.ToDecimal32(1);
    long long const row = info.cursor.row;
    long long const column = info.cursor.column;
    switch (command) {
        case 'A':
            return MoveTo(row - n, column);
        case 'B':
            return MoveTo(row + n, column);
        case 'C':
            return MoveTo(row, column + n);
        case 'D':
            return MoveTo(row, column - n);
        case 'E':
            return MoveTo(row + n, 0);
        case 'F':
            return MoveTo(row - n, 0);
        default:
            return MoveTo(row, n - 1);
    }
}

void ConsoleInterpreter::MoveTo(long long row, long long column) {
    // Ignore positions beyond 16 bits; the console rejects all others outside its buffer, so the
    // cursor stays and is not clamped.
    if (std::in_range<std::int16_t>(row) && std::in_range<std::int16_t>(column)) {
        screen_.SetCursor({static_cast<std::int16_t>(column), static_cast<std::int16_t>(row)});
    }
}

void ConsoleInterpreter::EraseScreen(int what) {
    Info info;
    if (!screen_.Read(info)) {
        return;
    }
    auto const [column, row] = info.cursor;
    switch (what) {
        case 0:
            // One line too many, as always; the console stops at the end of the buffer.
            return Erase(info.cursor, info.width - column + (info.height - row) * info.width);
        case 1:
            // Without the cell of the cursor, as in a line.
            return Erase({0, 0}, info.width * row + column);
        case 2:
        case 3:
            return Erase({0, 0}, info.width * info.height);
        default:
            return;
    }
}

void ConsoleInterpreter::EraseLine(int what) {
    Info info;
    if (!screen_.Read(info)) {
        return;
    }
    auto const [column, row] = info.cursor;
    switch (what) {
        case 0:
            return Erase(info.cursor, info.width - column);
        case 1:
            return Erase({0, row}, column);
        case 2:
            return Erase({0, row}, info.width);
        default:
            return;
    }
}

void ConsoleInterpreter::Erase(Position from, int count) {
    screen_.FillBlanks(from, count);
    screen_.FillAttribute(from, count, currentAttribute);
}

void ConsoleInterpreter::Scroll(int rows) {
    Info info;
    // Check only the way up: the console itself limits the way down.
    if (screen_.Read(info) && -rows <= info.windowTop) {
        screen_.MoveWindow(static_cast<std::int16_t>(std::min(rows, INT16_MAX)));
    }
}

void ConsoleInterpreter::SetRendition(String codes) {
    Info info;
    std::uint16_t attribute = screen_.Read(info) ? info.attribute : std::uint16_t{0};
    currentAttribute = attribute;
    while (applyNextSgr(codes, attribute)) {
        currentAttribute = attribute;
        screen_.SetAttribute(attribute);
    }
}

void ConsoleInterpreter::SaveCursor() {
    Info info;
    if (screen_.Read(info)) {
        savedColumn = info.cursor.column;
        savedRow = info.cursor.row;
    }
}

}  // namespace core
