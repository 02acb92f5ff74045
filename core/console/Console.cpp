#include "core/console/Console.h"

#include <cstddef>

#include "sys/platform/Terminal.h"

namespace core {

void Console::write(String const& text, bool newline) {
    String out = sys::platform::terminalTakesSequences() ? text : withoutSequences(text);
    if (newline) {
        out.Append('\n');
    }
    // Line and line feed in one piece, so that lines of several threads do not mix.
    sys::platform::writeStandardOutput(out.getCString(), static_cast<std::size_t>(out.GetLength()));
}

String Console::withoutSequences(String const& text) {
    String out;
    int from = 0;
    for (;;) {
        int const found = text.Find("\x1B[", from);
        if (found < 0) {
            out.Append(text.Copy(from, -1));
            return out;
        }
        out.Append(text.Copy(from, found - from));
        char const* const start = text.getCString() + found + 2;
        char const* end = start;
        while ((*end >= '0' && *end <= '9') || *end == ';') {
            ++end;
        }
        if (*end == '\0') {
            return out;
        }
        from = found + 2 + static_cast<int>(end - start) + 1;
    }
}

}  // namespace core
