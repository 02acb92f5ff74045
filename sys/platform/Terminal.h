#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace sys::platform {

enum class StandardStream { output, error };

/// Whether text on standard output may currently contain control sequences for the stream: both are
/// terminals that support them.
bool supportsControlSequences(StandardStream stream);

/// Whether the stream is a terminal that can redraw a line after a carriage return.
bool redrawsLines(StandardStream stream);
/// Returns the columns of the terminal; 80 if they are not known.
int terminalWidth(StandardStream stream);

/// Writes all bytes to the stream, unbuffered, so that the reader of a pipe receives them at once.
/// Returns false if the stream is closed or full, which must not end an update.
bool writeStandardStream(StandardStream stream, char const* text, std::size_t length);

}  // namespace sys::platform

namespace sys {

/// A console that has functions instead of control sequences: a buffer of cells, each a character
/// and an attribute, and a window that shows some of its rows. Every operation is one call to the
/// console; one that fails (a position outside the buffer, a closed console) changes nothing and is
/// not reported.
///
/// Positions count from 0 and are 16 bits wide, like the console's own: callers drop values that do
/// not fit; the console accepts or rejects the rest.
class Screen {
public:
    struct Position {
        std::int16_t column;
        std::int16_t row;
    };

    struct Info {
        /// Cells of the whole buffer, not of the window.
        std::int16_t width;
        std::int16_t height;
        Position cursor;
        /// Of the next text: foreground in the low four bits (blue 1, green 2, red 4, intensity 8),
        /// background in the next four, 0x4000 reverse video, 0x8000 underscore.
        std::uint16_t attribute;
        /// The first row of the buffer that the window shows.
        std::int16_t windowTop;
    };

    virtual ~Screen() = default;

    /// Returns false, and info is undefined, if the console is closed.
    virtual bool Read(Info& info) = 0;
    virtual void SetCursor(Position position) = 0;
    virtual void SetAttribute(std::uint16_t attribute) = 0;
    /// Writes all bytes (UTF-8) to standard output, whichever stream this is the screen of. Text
    /// wraps at the right edge and scrolls the buffer at its end.
    virtual void Write(std::string_view text) = 0;
    /// Fill count cells with spaces or with an attribute, line after line up to the end of the
    /// buffer. The cursor stays.
    virtual void FillBlanks(Position from, int count) = 0;
    virtual void FillAttribute(Position from, int count, std::uint16_t attribute) = 0;
    /// Moves the window down the buffer by rows, or up if rows is negative.
    virtual void MoveWindow(std::int16_t rows) = 0;
};

/// Returns the screen that the stream is currently shown on, null if it is not such a console. The
/// platform owns the screen, which stays valid: after the console closes, its calls fail.
Screen* screenOf(platform::StandardStream stream);

/// Returns the screen of a Win32 console handle, which the caller owns and which must outlive the
/// screen; null if the handle is not a console's, and on other platforms.
std::unique_ptr<Screen> screenOf(void* handle);

}  // namespace sys
