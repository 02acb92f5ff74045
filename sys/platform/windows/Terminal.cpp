#include "sys/platform/Terminal.h"

#include <windows.h>

#include "sys/platform/windows/text.h"

namespace sys::platform {

bool terminalTakesSequences() {
    return false;
}

void writeStandardOutput(char const* text, std::size_t length) {
    HANDLE const output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) != 0) {
        // In UTF-16, because the console reads 8-bit text in a code page of its own.
        std::wstring const words = wide({text, length});
        DWORD written = 0;
        WriteConsoleW(output, words.data(), static_cast<DWORD>(words.size()), &written, nullptr);
        return;
    }
    while (length > 0) {
        DWORD written = 0;
        if (WriteFile(output, text, static_cast<DWORD>(length), &written, nullptr) == 0 ||
            written == 0) {
            return;
        }
        text += written;
        length -= written;
    }
}

}  // namespace sys::platform
