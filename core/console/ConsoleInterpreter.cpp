#include "core/console/ConsoleInterpreter.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <utility>

#include "core/console/ConsolePiece.h"
#include "core/console/nextRendition.h"

namespace core {

namespace {

using Info = sys::Screen::Info;
using Position = sys::Screen::Position;

// Threads that write at the same time may see each other's colour; being atomic, that is all.
std::atomic<std::uint16_t> currentAttribute{7};
std::atomic<std::int16_t> savedColumn{0};
std::atomic<std::int16_t> savedRow{0};

int numberOr(int missing, String const& parameters) {
    return parameters.IsEmpty() ? missing : parameters.ToDecimal32();
}

}  // namespace

void ConsoleInterpreter::Write(std::string_view text, bool newline) {
    ConsolePiece piece = ConsolePiece::TakeFrom(text);
    for (; piece.command != '\0'; piece = ConsolePiece::TakeFrom(text)) {
        if (!piece.plain.empty()) {
            screen_.write(piece.plain);
        }
        execute(piece.command, String(piece.parameters));
    }
    // The end of the line and its line feed in one piece, so that lines of several threads do not
    // mix.
    String rest(piece.plain);
    if (newline) {
        rest.Append('\n');
    }
    if (!rest.IsEmpty()) {
        screen_.write(rest.View());
    }
}

void ConsoleInterpreter::execute(char command, String const& parameters) {
    switch (command) {
        case 'A':
        case 'B':
        case 'C':
        case 'D':
        case 'E':
        case 'F':
        case 'G':
            return moveCursor(command, parameters);
        case 'H':
        case 'f':
            // What stands before the semicolon, if there is one, and what stands behind it.
            return moveTo(parameters.ToDecimal32(1) - 1,
                          parameters.RightOf(';').ToDecimal32(1) - 1);
        case 'J':
            return eraseScreen(numberOr(0, parameters));
        case 'K':
            return eraseLine(numberOr(0, parameters));
        case 'S':
            return scroll(-numberOr(1, parameters));
        case 'T':
            return scroll(numberOr(1, parameters));
        case 'm':
            return setRendition(parameters.IsEmpty() ? "0" : parameters);
        case 's':
            return saveCursor();
        case 'u':
            return screen_.setCursor({savedColumn, savedRow});
        default:
            return;
    }
}

void ConsoleInterpreter::moveCursor(char command, String const& parameters) {
    Info info;
    bool const valid = parameters.IsEmpty() || parameters.IsDecimal32();
    if (!valid || !screen_.read(info)) {
        return;
    }
    long long const n = parameters.ToDecimal32(1);
    long long const row = info.cursor.row;
    long long const column = info.cursor.column;
    switch (command) {
        case 'A':
            return moveTo(row - n, column);
        case 'B':
            return moveTo(row + n, column);
        case 'C':
            return moveTo(row, column + n);
        case 'D':
            return moveTo(row, column - n);
        case 'E':
            return moveTo(row + n, 0);
        case 'F':
            return moveTo(row - n, 0);
        default:
            return moveTo(row, n - 1);
    }
}

void ConsoleInterpreter::moveTo(long long row, long long column) {
    // No buffer reaches beyond 16 bits. A place that is outside for another reason is the
    // console's to refuse: the cursor then stays, it does not go as far as it can.
    if (std::in_range<std::int16_t>(row) && std::in_range<std::int16_t>(column)) {
        screen_.setCursor({static_cast<std::int16_t>(column), static_cast<std::int16_t>(row)});
    }
}

void ConsoleInterpreter::eraseScreen(int what) {
    Info info;
    if (!screen_.read(info)) {
        return;
    }
    auto const [column, row] = info.cursor;
    switch (what) {
        case 0:
            // A line more than there is, which does no harm: the console stops at the buffer's end.
            return blank(info.cursor, info.width - column + (info.height - row) * info.width);
        case 1:
            // Up to the cursor, whose own cell stays, here as in a line.
            return blank({0, 0}, info.width * row + column);
        case 2:
        case 3:
            return blank({0, 0}, info.width * info.height);
        default:
            return;
    }
}

void ConsoleInterpreter::eraseLine(int what) {
    Info info;
    if (!screen_.read(info)) {
        return;
    }
    auto const [column, row] = info.cursor;
    switch (what) {
        case 0:
            return blank(info.cursor, info.width - column);
        case 1:
            return blank({0, row}, column);
        case 2:
            return blank({0, row}, info.width);
        default:
            return;
    }
}

void ConsoleInterpreter::blank(Position from, int count) {
    screen_.fillBlanks(from, count);
    screen_.fillAttribute(from, count, currentAttribute);
}

void ConsoleInterpreter::scroll(int rows) {
    Info info;
    // Only the way up is checked; how far down the window may go, the console knows itself.
    if (screen_.read(info) && -rows <= info.windowTop) {
        screen_.moveWindow(static_cast<std::int16_t>(std::min(rows, INT16_MAX)));
    }
}

void ConsoleInterpreter::setRendition(String codes) {
    Info info;
    std::uint16_t attribute = screen_.read(info) ? info.attribute : std::uint16_t{0};
    currentAttribute = attribute;
    while (nextRendition(codes, attribute)) {
        currentAttribute = attribute;
        screen_.setAttribute(attribute);
    }
}

void ConsoleInterpreter::saveCursor() {
    Info info;
    if (screen_.read(info)) {
        savedColumn = info.cursor.column;
        savedRow = info.cursor.row;
    }
}

}  // namespace core
