#include "core/console/Console.h"
#include "core/console/ConsolePiece.h"
#include "fuzz/Input.h"
#include "fuzz/core/console/MemoryScreen.h"

namespace {

using core::Console;
using core::String;

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

    MemoryScreen whole(7, 6, 4, gone);
    start(whole);
    Console::write(whole, text, false);
    require(whole.Written() == Console::withoutSequences(text).getCString());

    MemoryScreen pieces(7, 6, 4, gone);
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
