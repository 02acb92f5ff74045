#include "sys/platform/Screen.h"

#include <windows.h>

namespace sys {

namespace {

/// The screen buffer that a handle is connected to.
class Win32Screen : public Screen {
public:
    bool read(Info& info) override {
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

    void setCursor(Position position) override {
        SetConsoleCursorPosition(Handle(), CellAt(position));
    }

    void setAttribute(std::uint16_t attribute) override {
        SetConsoleTextAttribute(Handle(), attribute);
    }

    void write(std::string_view text) override {
        platform::writeStandardOutput(text.data(), text.size());
    }

    void fillBlanks(Position from, int count) override {
        DWORD filled = 0;
        FillConsoleOutputCharacterA(Handle(), ' ', static_cast<DWORD>(count), CellAt(from),
                                    &filled);
    }

    void fillAttribute(Position from, int count, std::uint16_t attribute) override {
        DWORD filled = 0;
        FillConsoleOutputAttribute(Handle(), attribute, static_cast<DWORD>(count), CellAt(from),
                                   &filled);
    }

    void moveWindow(std::int16_t rows) override {
        SMALL_RECT const distance{0, rows, 0, rows};
        SetConsoleWindowInfo(Handle(), FALSE, &distance);
    }

private:
    virtual HANDLE Handle() const = 0;
    static COORD CellAt(Position position) { return {position.column, position.row}; }
};

/// The screen of a standard stream, whose handle is read at each call, because it may be redirected
/// at any time.
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
    return screen.read(info) ? &screen : nullptr;
}

std::unique_ptr<Screen> screenOf(void* handle) {
    auto screen = std::make_unique<HandleScreen>(handle);
    Screen::Info info;
    return screen->read(info) ? std::move(screen) : nullptr;
}

}  // namespace sys
