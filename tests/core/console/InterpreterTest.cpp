#include <algorithm>
#include <vector>

#include "tests/core/console/InterpreterRows.h"

namespace {

using core::Console;
using interpreter::Cell;

/// A buffer of 80 x 30 cells, of which the window shows 25 rows. It refuses a cursor or a window
/// outside; text that reaches the edges is not expected.
class MemoryScreen : public sys::Screen {
public:
    Cell At(Position at) const { return {text_[indexOf(at)], attributes_[indexOf(at)]}; }

    /// A console that has gone away tells nothing.
    bool gone = false;
    /// The pieces written.
    std::vector<std::string> writes;

    bool read(Info& info) override {
        info = info_;
        return !gone;
    }
    void setCursor(Position at) override {
        bool const outside = at.row < 0 || at.row >= 30 || at.column < 0 || at.column >= 80;
        info_.cursor = outside ? info_.cursor : at;
    }
    void setAttribute(std::uint16_t attribute) override { info_.attribute = attribute; }
    void write(std::string_view text) override {
        writes.emplace_back(text);
        for (char const c : text) {
            if (c == '\n') {
                info_.cursor = {-1, ++info_.cursor.row};
            } else {
                text_[indexOf(info_.cursor)] = c;
                attributes_[indexOf(info_.cursor)] = info_.attribute;
            }
            ++info_.cursor.column;
        }
    }
    void fillBlanks(Position from, int count) override { fill(text_, from, count, ' '); }
    void fillAttribute(Position from, int count, std::uint16_t attribute) override {
        fill(attributes_, from, count, attribute);
    }
    void moveWindow(std::int16_t rows) override {
        int const top = info_.windowTop + rows;
        info_.windowTop = top >= 0 && top <= 5 ? static_cast<std::int16_t>(top) : info_.windowTop;
    }

private:
    static std::size_t indexOf(Position at) {
        return static_cast<std::size_t>(at.row * 80 + at.column);
    }
    template <class Cells, class Value>
    static void fill(Cells& cells, Position from, int count, Value value) {
        std::size_t const room = cells.size() - indexOf(from);
        std::fill_n(&cells[indexOf(from)], std::min(static_cast<std::size_t>(count), room), value);
    }

    Info info_{80, 30, {0, 0}, 7, 0};
    std::string text_ = std::string(80 * 30, ' ');
    std::vector<std::uint16_t> attributes_ = std::vector<std::uint16_t>(80 * 30, 7);
};

TEST(Interpreter, RowsOnAScreenInMemory) {
    MemoryScreen screen;
    EXPECT_GT(interpreter::check(screen, [&](auto position) { return screen.At(position); }), 150);
}

TEST(Interpreter, WithoutAConsoleTextIsWrittenAndColoursStartFromBlack) {
    MemoryScreen screen;
    screen.gone = true;
    Console::write(screen, "\x1B[1mX\x1B[5Ca\x1B[2J\x1B[K\x1B[9T\x1B[s\x1B[", true);
    EXPECT_EQ(screen.writes, (std::vector<std::string>{"X", "a", "\n"}));
    screen.gone = false;
    Console::write(screen, "\x1B[KOne piece\x1B[12", true);
    EXPECT_EQ(screen.At({0, 1}).attribute, 8);
    EXPECT_EQ(screen.writes.back(), "One piece\n");
}

}  // namespace
