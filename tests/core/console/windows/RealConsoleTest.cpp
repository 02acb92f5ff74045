#include <windows.h>

#include "tests/core/console/InterpreterRows.h"

namespace {

/// A screen buffer of the process's console, to which standard output goes during its lifetime. The
/// reports of GoogleTest still go to the previous one.
class ScreenBuffer {
public:
    ScreenBuffer()
        : before_(GetStdHandle(STD_OUTPUT_HANDLE)),
          handle_(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                            CONSOLE_TEXTMODE_BUFFER, nullptr)) {
        SetStdHandle(STD_OUTPUT_HANDLE, handle_);
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(handle_, &info);
        int const shown = info.srWindow.Bottom - info.srWindow.Top + 1;
        SetConsoleScreenBufferSize(handle_, {info.dwSize.X, static_cast<SHORT>(shown + 5)});
    }
    ScreenBuffer(ScreenBuffer const&) = delete;
    ~ScreenBuffer() {
        SetStdHandle(STD_OUTPUT_HANDLE, before_);
        CloseHandle(handle_);
    }

    HANDLE Handle() const { return handle_; }

    interpreter::Cell At(sys::Screen::Position at) const {
        COORD const position{at.column, at.row};
        wchar_t character = 0;
        WORD attribute = 0;
        DWORD count = 0;
        ReadConsoleOutputCharacterW(handle_, &character, 1, position, &count);
        ReadConsoleOutputAttribute(handle_, &attribute, 1, position, &count);
        return {character, attribute};
    }

private:
    HANDLE const before_;
    HANDLE const handle_;
};

TEST(RealConsole, ExecutesSequences) {
    ScreenBuffer const buffer;
    sys::Screen* const screen = sys::screenOf(sys::platform::StandardStream::output);
    ASSERT_NE(screen, nullptr) << "this test needs a console";
    EXPECT_GT(interpreter::check(*screen, [&](auto position) { return buffer.At(position); }), 150);
}

TEST(RealConsole, ShowsUnicode) {
    ScreenBuffer const buffer;
    core::Console::write("\x1B[Hz\xc3\xbcrich \x1B[91m\xce\xa9\x1B[39m", true);
    EXPECT_EQ(buffer.At({1, 0}).text, L'\u00fc');
    EXPECT_EQ(buffer.At({7, 0}).text, L'\u03a9');
    EXPECT_EQ(buffer.At({7, 0}).attribute, 12);
}

TEST(RealConsole, ExecutesSequencesOnAHandleAndWritesTextToStandardOutput) {
    ScreenBuffer const given;
    {
        ScreenBuffer const output;
        core::Console::write(given.Handle(), "\x1B[2;1H\x1B[31mX", false);
        EXPECT_EQ(output.At({0, 0}).text, L'X');
    }
    core::Console::write("Y", false);
    EXPECT_EQ(given.At({0, 1}).attribute, 4);
}

TEST(RealConsole, SurvivesAClosedConsole) {
    {
        ScreenBuffer const buffer;
        core::Console::write("\x1B[31mred", false);
    }
    HANDLE const output = GetStdHandle(STD_OUTPUT_HANDLE);
    for (HANDLE const closed : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        SetStdHandle(STD_OUTPUT_HANDLE, closed);
        EXPECT_EQ(sys::screenOf(sys::platform::StandardStream::output), nullptr);
        core::Console::write("\x1B[31mred\x1B[2J", true);
        core::Console::ewrite("\x1B[31mred\x1B[2J", true);
    }
    SetStdHandle(STD_OUTPUT_HANDLE, output);
}

}  // namespace
