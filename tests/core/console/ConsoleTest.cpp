#include <gtest/gtest.h>

#include "core/console/Console.h"
#include "core/console/errorLine.h"
#include "tests/support/lines.h"

namespace {

using core::Console;
using core::String;

TEST(Console, SequencesLeaveOutWhatTheTerminalAssumes) {
    struct Row {
        String built;
        char const* expected;
    } const rows[] = {
        {Console::sgr(0), "\x1B[m"},
        {Console::sgr(7), "\x1B[7m"},
        {Console::prevLine(1), "\x1B[F"},
        {Console::prevLine(3), "\x1B[3F"},
        {Console::setHorzPos(1), "\x1B[G"},
        {Console::setHorzPos(12), "\x1B[12G"},
        {Console::color(Console::Color::white), "\x1B[37m"},
        {Console::color(Console::Color::brightBlack), "\x1B[90m"},
        {Console::color("OK", Console::Color{10}), "\x1B[92mOK\x1B[39m"},
        {Console::color("OK", Console::Color{11}), "\x1B[93mOK\x1B[39m"},
        {Console::color("100%3", Console::Color{14}), "\x1B[96m100%3\x1B[39m"},
        {Console::color(true), "\x1B[39m\x1B[m"},
    };
    for (Row const& row : rows) {
        EXPECT_STREQ(row.built.getCString(), row.expected);
    }
    Console::setPlain(true);
    EXPECT_STREQ(Console::color("OK", Console::Color::red).getCString(), "OK");
    Console::setPlain(false);
}

TEST(Console, TextWithoutSequences) {
    struct Row {
        char const* text;
        char const* expected;
    } const rows[] = {
        {"", ""},
        {"plain", "plain"},
        {"\x1B[31mred\x1B[39m end", "red end"},
        {"\x1B[1;31mred", "red"},
        {"cut short \x1B[12", "cut short "},
        {"cut short \x1B[", "cut short "},
        {"\x1B[m\x1B[m\x1B[mx", "x"},
        {"an ESC \x1B alone", "an ESC \x1B alone"},
        {"last \x1B", "last \x1B"},
        {"unknown \x1B[?25h", "unknown 25h"},
    };
    for (Row const& row : rows) {
        EXPECT_STREQ(Console::withoutSequences(row.text).getCString(), row.expected) << row.text;
    }
}

TEST(Console, AnOutputThatIsNoTerminalGetsPlainText) {
    EXPECT_EQ(support::outputOf([] {
                  Console::write(Console::color("OK", Console::Color::green), true);
                  String("no line end").print(false);
                  Console::write("", true);
              }),
              "OK\nno line end\n");
}

TEST(Console, ErrorLineReplacesEveryEqualsSign) {
    EXPECT_STREQ(core::errorLine("Bad address=The (a=b) %1").getCString(),
                 "*** Bad address: The (a: b) %1");
}

}  // namespace
