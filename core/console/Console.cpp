#include "core/console/Console.h"

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "core/console/ConsoleInterpreter.h"
#include "core/text/TextBuilder.h"
#include "sys/platform/Terminal.h"

namespace core {

namespace {

using sys::platform::StandardStream;

std::atomic<bool> writeFailed = false;

/// Executes sequences on screen; if it is null, sends them to a terminal of the stream.
void writeTo(sys::Screen* screen, StandardStream stream, String const& text, bool newline) {
    if (screen != nullptr) {
        return Console::write(*screen, text, newline);
    }
    bool const pass = sys::platform::supportsControlSequences(stream);
    String out = pass ? text : Console::withoutSequences(text);
    if (newline) {
        out.Append('\n');
    }
    // Write line and line feed at once, so that lines of several threads do not mix.
    auto const length = static_cast<std::size_t>(out.GetLength());
    std::fflush(stdout);
    if (!sys::platform::writeStandardStream(StandardStream::output, out.getCString(), length)) {
        writeFailed = true;
    }
}

}  // namespace

void Console::write(String const& text, bool newline) {
    writeTo(sys::screenOf(StandardStream::output), StandardStream::output, text, newline);
}

void Console::ewrite(String const& text, bool newline) {
    writeTo(sys::screenOf(StandardStream::error), StandardStream::error, text, newline);
}

void Console::write(void* handle, String const& text, bool newline) {
    writeTo(sys::screenOf(handle).get(), StandardStream::output, text, newline);
}

bool Console::hasWriteFailed() {
    return writeFailed;
}

void Console::write(sys::Screen& screen, String const& text, bool newline) {
    std::fflush(stdout);
    ConsoleInterpreter(screen).Write(text.View(), newline);
}

String Console::withoutSequences(String const& text) {
    TextBuilder out;
    for (std::string_view rest = text.View(); !rest.empty();) {
        out.Append(ConsoleSegment::ParseNext(rest).plain);
    }
    return out.AsString();
}

// Here, because core/text cannot depend on the console.
void String::print(bool newLine) const {
    Console::write(*this, newLine);
}

}  // namespace core
