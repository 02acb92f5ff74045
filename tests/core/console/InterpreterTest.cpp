#include "fuzz/core/console/MemoryScreen.h"
#include "tests/core/console/InterpreterRows.h"

namespace {

using core::Console;

TEST(Interpreter, StartsWithGreyOnBlackAndTheFirstCell) {
    MemoryScreen screen(80, 30, 25);
    screen.FillAttribute({0, 0}, 1, 1);
    screen.SetCursor({5, 5});
    Console::write(screen, "\x1B[u\x1B[K", false);
    EXPECT_EQ(screen.AttributeAt({0, 0}), 7);
}

TEST(Interpreter, ExecutesSequences) {
    MemoryScreen screen(80, 30, 25);
    auto const cellAt = [&](auto at) {
        return interpreter::Cell{static_cast<wchar_t>(screen.TextAt(at)), screen.AttributeAt(at)};
    };
    EXPECT_GT(interpreter::check(screen, cellAt), 150);
}

TEST(Interpreter, WritesTextToAClosedConsole) {
    MemoryScreen screen(80, 30, 25, true);
    Console::write(screen, "\x1B[99mY\x1B[1mX\x1B[5Ca\x1B[2J\x1B[K\x1B[9T\x1B[s\x1B[", true);
    EXPECT_EQ(screen.Written(), "YXa\n");
    EXPECT_EQ(screen.AttributeAt({0, 0}), 7) << "an unknown code sets no attribute";
    screen.closed = false;
    Console::write(screen, "\x1B[KOne write\x1B[12", true);
    EXPECT_EQ(screen.AttributeAt({0, 1}), 8);
    EXPECT_EQ(screen.LastText(), "One write\n");
    Console::write(screen, "\x1B[32768T", false);
    EXPECT_EQ(screen.LastMove(), 32767) << "clamped; the console rejects it";
}

}  // namespace
