#include "core/console/Console.h"

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "core/console/ConsoleInterpreter.h"
#include "core/console/ConsolePiece.h"
#include "core/text/TextBuilder.h"
#include "sys/platform/Screen.h"
#include "sys/platform/Terminal.h"

namespace core {

namespace {

using sys::platform::StandardStream;

std::atomic<bool> lostText = false;

/// Sequences are executed on screen; if it is null, they pass to a terminal that is the stream's.
void writeOn(sys::Screen* screen, StandardStream stream, String const& text, bool newline) {
    if (screen != nullptr) {
        return Console::write(*screen, text, newline);
    }
    bool const pass = sys::platform::terminalTakesSequences(stream);
    String out = pass ? text : Console::withoutSequences(text);
    if (newline) {
        out.Append('\n');
    }
    // Line and line feed in one piece, so that lines of several threads do not mix.
    auto const length = static_cast<std::size_t>(out.GetLength());
    std::fflush(stdout);
    if (!sys::platform::writeStandardOutput(out.getCString(), length)) {
        lostText = true;
    }
}

}  // namespace

void Console::write(String const& text, bool newline) {
    writeOn(sys::screenOf(StandardStream::output), StandardStream::output, text, newline);
}

void Console::ewrite(String const& text, bool newline) {
    writeOn(sys::screenOf(StandardStream::error), StandardStream::error, text, newline);
}

void Console::write(void* handle, String const& text, bool newline) {
    writeOn(sys::screenOf(handle).get(), StandardStream::output, text, newline);
}

bool Console::hasLostText() {
    return lostText;
}

void Console::write(sys::Screen& screen, String const& text, bool newline) {
    std::fflush(stdout);
    ConsoleInterpreter(screen).Write(text.View(), newline);
}

String Console::withoutSequences(String const& text) {
    TextBuilder out;
    for (std::string_view rest = text.View(); !rest.empty();) {
        out.Append(ConsolePiece::TakeFrom(rest).plain);
    }
    return out.AsString();
}

}  // namespace core
