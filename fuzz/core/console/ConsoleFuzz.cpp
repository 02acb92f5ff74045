#include <tuple>
#include <vector>

#include "core/console/Console.h"
#include "core/console/ConsolePiece.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "sys/platform/Screen.h"

namespace {

using core::Console;
using core::String;

/// A small buffer, of which the window shows some rows, that insists on what its callers promise.
class MemoryScreen : public sys::Screen {
public:
    explicit MemoryScreen(bool gone) : gone_(gone) {}

    /// All that can be seen of it.
    auto Picture() const {
        return std::tuple(text_, attributes_, info_.cursor.column, info_.cursor.row,
                          info_.attribute, info_.windowTop);
    }
    std::string const& Written() const { return written_; }

    bool read(Info& info) override {
        info = info_;
        return !gone_;
    }
    void setCursor(Position at) override {
        if (isInside(at)) {
            info_.cursor = at;
        }
    }
    void setAttribute(std::uint16_t attribute) override {
        requireAttribute(attribute);
        info_.attribute = attribute;
    }
    void write(std::string_view text) override {
        require(!text.empty());
        written_ += text;
        for (char const c : text) {
            if (c != '\n') {
                text_[indexOf(info_.cursor)] = c;
                attributes_[indexOf(info_.cursor)] = info_.attribute;
            }
            ++info_.cursor.column;
            if (c == '\n' || info_.cursor.column == width) {
                startLine();
            }
        }
    }
    void fillBlanks(Position from, int count) override { fill(text_, from, count, ' '); }
    void fillAttribute(Position from, int count, std::uint16_t attribute) override {
        requireAttribute(attribute);
        fill(attributes_, from, count, attribute);
    }
    void moveWindow(std::int16_t rows) override {
        int const top = info_.windowTop + rows;
        if (top >= 0 && top + shown <= height) {
            info_.windowTop = static_cast<std::int16_t>(top);
        }
    }

private:
    static constexpr std::int16_t width = 7;
    static constexpr std::int16_t height = 6;
    static constexpr int shown = 4;
    static constexpr std::size_t cells = width * height;

    static bool isInside(Position at) {
        return at.row >= 0 && at.row < height && at.column >= 0 && at.column < width;
    }
    static std::size_t indexOf(Position at) {
        require(isInside(at));
        return static_cast<std::size_t>(at.row * width + at.column);
    }
    /// No screen shows more than the colours, reverse video and the underscore.
    static void requireAttribute(std::uint16_t attribute) { require((attribute & ~0xC0FF) == 0); }

    template <class Cells, class Value>
    static void fill(Cells& all, Position from, int count, Value value) {
        require(count >= 0);
        std::size_t const room = cells - indexOf(from);
        std::fill_n(&all[indexOf(from)], std::min(static_cast<std::size_t>(count), room), value);
    }
    void startLine() {
        info_.cursor.column = 0;
        if (++info_.cursor.row < height) {
            return;
        }
        --info_.cursor.row;
        text_ = text_.substr(width) + std::string(width, ' ');
        attributes_.erase(attributes_.begin(), attributes_.begin() + width);
        attributes_.resize(cells, info_.attribute);
    }

    bool const gone_;
    Info info_{width, height, {0, 0}, 7, 0};
    std::string text_ = std::string(cells, ' ');
    std::vector<std::uint16_t> attributes_ = std::vector<std::uint16_t>(cells, 7);
    std::string written_;
};

/// Brings what sequences leave in the process to what it was at its start.
void start(MemoryScreen& screen) {
    Console::write(screen, "\x1B[H\x1B[s\x1B[m", false);
}

}  // namespace

/// A text leaves the same screen in one piece or in many, as long as no sequence is cut, and shows
/// what it would where no sequence is understood.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    bool const gone = input.Byte() % 8 == 1;
    String const text(input.Rest().c_str());

    MemoryScreen whole(gone);
    start(whole);
    Console::write(whole, text, false);
    require(whole.Written() == Console::withoutSequences(text).getCString());

    MemoryScreen pieces(gone);
    start(pieces);
    for (std::string_view rest = text.View(); !rest.empty();) {
        std::string_view const before = rest;
        core::ConsolePiece::TakeFrom(rest);
        require(rest.size() < before.size());
        Console::write(pieces, String(before.substr(0, before.size() - rest.size())), false);
    }
    require(pieces.Picture() == whole.Picture());
    require(pieces.Written() == whole.Written());
    return 0;
}
