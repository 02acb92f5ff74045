#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

#include "core/console/Console.h"
#include "sys/platform/Terminal.h"
#include "tests/support/lines.h"

/// Sequences and their effects on any screen of at least 80 x 25 cells that shows standard output
/// and whose buffer has at least 5 rows more than its window.
namespace interpreter {

/// Rows, each for a screen whose attribute is before.
struct Table {
    std::uint16_t before;
    char const* rows;
};

/// SGR codes and, in hexadecimal, the attribute of the text after them.
constexpr Table renditions[] = {{7, R"(
    1:F 3:4007 7:4007 4:8007 3;4;1:C00F  5:7 6:7 8:7 9:7 20:7 25:7 26:7 29:7 89:7 98:7 108:7  031:4 ;;31;:4
    30:0 31:4 32:2 33:6 34:1 35:5 36:3  41:47 42:27 43:67 44:17 45:57 46:37 47:77  1;31:4 31;1:C
    90:8 91:C 92:A 93:E 94:9 95:D 96:B 97:F  100:87 101:C7 102:A7 103:E7 104:97 105:D7 106:B7
    107:F7 91;42:2C  38;5;1:4 38;5;9:C 38;5;15:F 38;5;16:F 38;5;200;4:800F 48;5;4:17 48;5;255:F7
    38;2;1;4;44;31:4 48;2;1;4;44;31:4 38;2;1:7 48;7;31:4 38;;31:4  38;5;99999999999:F
    99999999999;31:4)"},
                                {0xC01E, R"(
    :7 0:7 1:C01E 2:C016 22:C016 21:C01E 23:801E 27:801E 24:401E  10:C01E 19:C01E 5:C01E ;:C01E
    37:C017 39:C017 40:C00E 49:C00E 38:C01E 48:C01E 38;5:C017 48;5:C00E 38;5;;41:C047)"}};

/// Sequences, with "~" for ESC, that have no effect.
constexpr char ignored[] = R"(
    ~[2A ~[0A ~[2D ~[2F ~[0G ~[;A~[1;2B ~[0;1H ~[s~[2;9u ~[2147483647B ~[65536B ~[65538G
    ~[99999999999C ~[65537;65537H ~[65537T ~[99999999999J ~[99999999999K ~[99999999999S ~[4J ~[3K
    ~[2T~[2S ~[S~[9999T ~[0S~[;T)";

/// A text and the picture of the top left corner after it, 3 rows of 5 cells: "|" between rows, {A}
/// where the attribute becomes A, "^" before the cell of the cursor, or (row,column) if it is
/// outside, "." for a space except at the end of a row, and @n if the window begins at row n.
constexpr Table pictures[] = {
    {7, R"(
    XY          abc|dXY^|ghi        X~Y         abc|dX~Y^|ghi       X~~[1DY     abc|dXY^|ghi
    X~          abc|dX~^|ghi        X~[12       abc|dX^f|ghi        X~[         abc|dX^f|ghi
    ~[1;2IX~[vY abc|dXY^|ghi        ~[@X~[{Y    abc|dXY^|ghi        ~[?2AX      abc|d2AX^|ghi
    ~[5-X       abc|dX^f|ghi        ~[31mX~[mY  abc|d{4}X{7}Y^|ghi

    ~[A         a^bc|def|ghi        ~[1A        a^bc|def|ghi        ~[B         abc|def|g^hi
    ~[9B        abc|def|ghi(10,1)   ~[C         abc|de^f|ghi        ~[3C        abc|def.^|ghi
    ~[D         abc|^def|ghi        ~[E         abc|def|^ghi        ~[3E        abc|def|ghi(4,0)
    ~[F         ^abc|def|ghi        ~[G         abc|^def|ghi        ~[3G        abc|de^f|ghi
    ~[H         ^abc|def|ghi        ~[3H        abc|def|^ghi        ~[;3f       ab^c|def|ghi
    ~[2;f       abc|^def|ghi        ~[5;7H      abc|def|ghi(4,6)    ~[1;2;9H    a^bc|def|ghi
    ~[u         ^abc|def|ghi        ~[s~[HX~[u  Xbc|d^ef|ghi

    ~[J         abc|d^|             ~[0J~[A     a^bc|d|             ~[1J        |.^ef|ghi
    ~[1;2J      |.^ef|ghi           ~[2J        |.^|                ~[3J        |.^|
    ~[;J        abc|d^|             ~[K         abc|d^|ghi          ~[0K        abc|d^|ghi
    ~[1K        abc|.^ef|ghi        ~[G~[1K     abc|^def|ghi        ~[2K        abc|.^|ghi
    ~[44m~[J    abc|d{17}^|         ~[44m~[1J   {17}|.{7}^ef|ghi    ~[44m~[3J   {17}|.^|
    ~[44m~[K    abc|d{17}^|{7}ghi   ~[44m~[1K   abc|{17}.{7}^ef|ghi ~[44m~[2K   abc|{17}.^|{7}ghi

    ~[T         abc|d^ef|ghi@1      ~[4T~[S     abc|d^ef|ghi@3      ~[2T~[3S    abc|d^ef|ghi@2)"},
    // Erased cells have the attribute of the last sequence, not the console's.
    {0x1E, "~[K~[4;mX abc|d{801E}X{7}^|ghi"}};

struct Cell {
    wchar_t text;
    std::uint16_t attribute;
};
using CellAt = std::function<Cell(sys::Screen::Position)>;

inline std::string picture(sys::Screen& screen, CellAt const& cellAt) {
    sys::Screen::Info info{};
    EXPECT_TRUE(screen.Read(info));
    std::ostringstream out;
    int attribute = 7;
    bool outside = true;
    for (std::int16_t row = 0; row < 3; ++row) {
        std::ostringstream line;
        for (std::int16_t column = 0; column < 5; ++column) {
            Cell const cell = cellAt({column, row});
            if (cell.attribute != attribute) {
                line << std::hex << std::uppercase << '{' << (attribute = cell.attribute) << '}';
            }
            if (info.cursor.row == row && info.cursor.column == column) {
                line << '^';
                outside = false;
            }
            line << (cell.text == L' ' ? '.' : static_cast<char>(cell.text));
        }
        std::string const full = line.str();
        out << (row > 0 ? "|" : "") << full.substr(0, full.find_last_not_of('.') + 1);
    }
    if (outside) {
        out << '(' << info.cursor.row << ',' << info.cursor.column << ')';
    }
    if (info.windowTop != 0) {
        out << '@' << info.windowTop;
    }
    return out.str();
}

/// Writes each row to a screen with three rows of text in attribute 7 and the cursor in the second,
/// and compares the picture. Returns the number of rows.
inline int check(sys::Screen& screen, CellAt const& cellAt) {
    int count = 0;
    auto const write = [&](std::uint16_t before, std::string const& text) {
        sys::Screen::Info info{};
        EXPECT_TRUE(screen.Read(info));
        // Resets the state that the last row left in the process.
        core::Console::write(screen, "\x1B[m\x1B[H\x1B[s", false);
        screen.MoveWindow(static_cast<std::int16_t>(-info.windowTop));
        screen.FillBlanks({0, 0}, info.width * info.height);
        screen.FillAttribute({0, 0}, info.width * info.height, 7);
        screen.Write("abc\ndef\nghi");
        screen.SetCursor({1, 1});
        screen.SetAttribute(before);
        core::Console::write(screen, support::replaced(text, "~", "\x1B").c_str(), false);
        ++count;
        return support::replaced(picture(screen, cellAt), "\x1B", "~");
    };
    for (Table const& table : renditions) {
        std::istringstream words(table.rows);
        for (std::string codes, attribute; std::getline(words >> std::ws, codes, ':');) {
            words >> attribute;
            write(table.before, std::string("~[").append(codes).append("mX"));
            EXPECT_EQ(cellAt({1, 1}).attribute, std::stoi(attribute, nullptr, 16)) << codes;
        }
    }
    std::istringstream sequences(ignored);
    for (std::string text; sequences >> text;) {
        EXPECT_EQ(write(7, text), "abc|d^ef|ghi") << text;
    }
    for (Table const& table : pictures) {
        std::istringstream words(table.rows);
        for (std::string text, expected; words >> text >> expected;) {
            EXPECT_EQ(write(table.before, text), expected) << text;
        }
    }
    return count;
}

}  // namespace interpreter
