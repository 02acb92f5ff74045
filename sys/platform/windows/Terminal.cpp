#include "sys/platform/Terminal.h"

#include <windows.h>

#include <string_view>

#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// In UTF-16, because a console reads 8-bit text in a code page of its own.
bool writeToConsole(HANDLE console, std::string_view text) {
    std::wstring const words = wide(text);
    for (std::wstring_view rest = words; !rest.empty();) {
        DWORD written = 0;
        if (WriteConsoleW(console, rest.data(), static_cast<DWORD>(rest.size()), &written,
                          nullptr) == 0 ||
            written == 0) {
            return false;
        }
        rest.remove_prefix(written);
    }
    return true;
}

}  // namespace

bool terminalTakesSequences(StandardStream) {
    // A console is driven by calls, whatever it may understand besides: see sys::Screen.
    return false;
}

bool writeStandardOutput(char const* text, std::size_t length) {
    HANDLE const output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) != 0) {
        return writeToConsole(output, {text, length});
    }
    while (length > 0) {
        DWORD written = 0;
        if (WriteFile(output, text, static_cast<DWORD>(length), &written, nullptr) == 0 ||
            written == 0) {
            return false;
        }
        text += written;
        length -= written;
    }
    return true;
}

}  // namespace sys::platform
