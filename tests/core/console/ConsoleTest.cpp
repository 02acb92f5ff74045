#include <gtest/gtest.h>

#include <cstdio>

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "tests/support/PrintText.h"
#include "tests/support/lines.h"

namespace {

using namespace core;

/// Returns text with a space instead of each ESC.
std::string shown(String const& text) {
    return support::replaced(text.getCString(), "\x1B", " ");
}

TEST(Console, OmitsDefaultNumbersOfSequences) {
    using C = Console;
    using D = C::Direction;
    auto const moves = [] {
        return C::cursor(D::up, 1) + C::cursor(D::down, 2) + C::cursor(D::forward, 0) +
               C::cursor(D::back, -1) + C::prevLine(1) + C::prevLine(3) + C::nextLine(1) +
               C::nextLine(12) + C::setHorzPos(1) + C::setHorzPos(12) + C::setPos(1, 1) +
               C::setPos(1, 3) + C::setPos(2, 1) + C::setPos(2, 3) + C::scrollUp(1) +
               C::scrollUp(2) + C::scrollDown(1) + C::scrollDown(3) + C::saveCursorPos() +
               C::restoreCursorPos();
    };
    EXPECT_EQ(shown(moves()),
              " [A [2B [0C [-1D [F [3F [E [12E [G [12G [H [;3H [2H [2;3H [S [2S [T [3T [s [u");
    EXPECT_EQ(shown(C::eraseScreen(C::EraseScreen::toEnd) + C::eraseScreen(C::EraseScreen{1}) +
                    C::eraseScreen(C::EraseScreen{9}) + C::eraseLine(C::EraseLine::toEnd) +
                    C::eraseLine(C::EraseLine{1}) + C::eraseLine(C::EraseLine::all)),
              " [J [1J [2J [K [1K [2K");
    EXPECT_EQ(shown(C::sgr(0) + C::sgr(7) + C::sgr(0, "1") + C::reset() + C::bold(true) +
                    C::bold(false) + C::underline(true) + C::underline(false) + C::invert(true) +
                    C::invert(false) + C::blink(C::Blink::off) + C::blink(C::Blink::slow) +
                    C::blink(C::Blink{2}) + C::blink(C::Blink{3}) + C::font(0) + C::font(9)),
              " [m [7m [0;1m [m [1m [21m [4m [24m [7m [27m [25m [5m [6m [25m [10m [19m");
    EXPECT_TRUE((C::font(10) + C::font(0xFFFFFFFF)).IsEmpty());
    unsigned char const level = 11;
    EXPECT_EQ(shown(C::color(C::Color::white) + C::color(C::Color{8}) + C::color(true) +
                    C::color(1, 0, 255) + C::color(level) + C::color("100%3", C::Color{14}) +
                    C::background(C::Color::red) + C::background(C::Color{15}) +
                    C::background(true) + C::background(9, 8, 7) + C::background(level)),
              " [37m [90m [39m [m [38;2;1;0;255m [38;5;233m [96m100%3 [39m [41m [107m [49m [m"
              " [48;2;9;8;7m [48;5;233m");
    EXPECT_EQ(C::rgb2index(0, 42, 43), 17);
    EXPECT_EQ(C::rgb2index(255, 128, 214), 16 + 36 * 5 + 6 * 3 + 5);
    C::setPlain(true);
    EXPECT_STREQ((moves() + C::color("OK", C::Color::red)).getCString(), "OK");
    C::setPlain(false);
}

TEST(Console, WritesPlainTextUnlessOutputIsATerminal) {
    EXPECT_EQ(support::outputOf([] {
                  std::printf("C, ");
                  Console::write(Console::color("OK", Console::Color::green), true);
                  Console::write(nullptr, "\x1B[31mno \x1B[2Jconsole", true);
                  Console::ewrite("\x1B[1;31mred\x1B[?25h \x1B[2J\x1B[Hcut\x1B[12", true);
                  String("no \x1B line end\x1B").print();
                  Console::write("\x1B[", true);
                  printReport("1 of 9");
                  printReport("9 of 9");
                  printText("and ");
                  printReport("1 of 1");
                  printLine("end");
                  printReport("new");
              }),
              "C, OK\nno console\nred25h cut\nno \x1B line end\x1B\n"
              "1 of 9\n9 of 9          \nand 1 of 1\nend\nnew\n");
    EXPECT_FALSE(Console::hasWriteFailed());
}

}  // namespace
