#include "core/console/Console.h"
#include "core/console/ConsoleInterpreter.h"
#include "fuzz/Input.h"
#include "fuzz/core/console/MemoryScreen.h"

namespace {

using core::Console;
using core::String;

/// Resets the state that sequences leave in the process.
void start(MemoryScreen& screen) {
    Console::write(screen, "\x1B[H\x1B[s\x1B[m", false);
}

}  // namespace

/// A text leaves the same screen whether written at once or in segments, and shows the same
/// characters as where sequences are removed.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    bool const closed = input.Byte() % 8 == 1;
    String const text(input.Rest().c_str());

    MemoryScreen whole(7, 6, 4, closed);
    start(whole);
    Console::write(whole, text, false);
    require(whole.Written() == Console::withoutSequences(text).getCString());

    MemoryScreen segments(7, 6, 4, closed);
    start(segments);
    for (std::string_view rest = text.View(); !rest.empty();) {
        std::string_view const before = rest;
        core::ConsoleSegment::ParseNext(rest);
        require(rest.size() < before.size());
        Console::write(segments, String(before.substr(0, before.size() - rest.size())), false);
    }
    require(segments.Picture() == whole.Picture());
    require(segments.Written() == whole.Written());
    return 0;
}
