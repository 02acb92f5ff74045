#include "sys/platform/Terminal.h"

#include <windows.h>

#include <string_view>

#include "sys/platform/windows/system.h"

namespace sys::platform {

namespace {

HANDLE handleOf(StandardStream stream) {
    return GetStdHandle(stream == StandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// As UTF-16: the console decodes 8-bit text in its own code page.
bool writeToConsole(HANDLE console, std::string_view text) {
    std::wstring const units = toUtf16(text);
    for (std::wstring_view rest = units; !rest.empty();) {
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

bool supportsControlSequences(StandardStream) {
    // A console is used by its functions, even if it supports sequences: see sys::Screen.
    return false;
}

bool redrawsLines(StandardStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

int terminalWidth(StandardStream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    return GetConsoleScreenBufferInfo(handleOf(stream), &info) != 0 ? info.dwSize.X : 80;
}

bool writeStandardStream(StandardStream stream, char const* text, std::size_t length) {
    HANDLE const output = handleOf(stream);
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

namespace sys {

namespace {

/// The screen buffer that a handle is connected to.
class Win32Screen : public Screen {
public:
    bool Read(Info& info) override {
        CONSOLE_SCREEN_BUFFER_INFO found{};
        if (GetConsoleScreenBufferInfo(Handle(), &found) == 0) {
            return false;
        }
        info = {found.dwSize.X,
                found.dwSize.Y,
                {found.dwCursorPosition.X, found.dwCursorPosition.Y},
                found.wAttributes,
                found.srWindow.Top};
        return true;
    }

    void SetCursor(Position position) override {
        SetConsoleCursorPosition(Handle(), CellAt(position));
    }

    void SetAttribute(std::uint16_t attribute) override {
        SetConsoleTextAttribute(Handle(), attribute);
    }

    void Write(std::string_view text) override {
        platform::writeStandardStream(platform::StandardStream::output, text.data(), text.size());
    }

    void FillBlanks(Position from, int count) override {
        DWORD filled = 0;
        FillConsoleOutputCharacterA(Handle(), ' ', static_cast<DWORD>(count), CellAt(from),
                                    &filled);
    }

    void FillAttribute(Position from, int count, std::uint16_t attribute) override {
        DWORD filled = 0;
        FillConsoleOutputAttribute(Handle(), attribute, static_cast<DWORD>(count), CellAt(from),
                                   &filled);
    }

    void MoveWindow(std::int16_t rows) override {
        SMALL_RECT const distance{0, rows, 0, rows};
        SetConsoleWindowInfo(Handle(), FALSE, &distance);
    }

private:
    virtual HANDLE Handle() const = 0;
    static COORD CellAt(Position position) { return {position.column, position.row}; }
};

/// The screen of a standard stream. Gets the handle at each call, because the stream may be
/// redirected at any time.
class StreamScreen : public Win32Screen {
public:
    explicit StreamScreen(DWORD stream) : stream_(stream) {}

private:
    HANDLE Handle() const override { return GetStdHandle(stream_); }

    DWORD const stream_;
};

class HandleScreen : public Win32Screen {
public:
    explicit HandleScreen(HANDLE handle) : handle_(handle) {}

private:
    HANDLE Handle() const override { return handle_; }

    HANDLE const handle_;
};

}  // namespace

Screen* screenOf(platform::StandardStream stream) {
    static StreamScreen output(STD_OUTPUT_HANDLE);
    static StreamScreen error(STD_ERROR_HANDLE);
    Screen& screen = stream == platform::StandardStream::output ? output : error;
    Screen::Info info;
    return screen.Read(info) ? &screen : nullptr;
}

std::unique_ptr<Screen> screenOf(void* handle) {
    auto screen = std::make_unique<HandleScreen>(handle);
    Screen::Info info;
    return screen->Read(info) ? std::move(screen) : nullptr;
}

}  // namespace sys
