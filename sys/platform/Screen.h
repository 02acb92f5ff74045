#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "sys/platform/Terminal.h"

namespace sys {

/// A console that understands no control sequences and is driven by calls: a buffer of cells, each
/// a character and an attribute, and a window that shows some of its rows. Every operation is one
/// call to the console; one that fails (a position outside the buffer, a closed console)
/// changes nothing and is not reported.
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
        /// What the next text is written with: foreground in the low four bits (blue 1, green 2,
        /// red 4, intensity 8), background in the next four, 0x4000 reverse video, 0x8000
        /// underscore.
        std::uint16_t attribute;
        /// The row of the buffer that the window begins with.
        std::int16_t windowTop;
    };

    virtual ~Screen() = default;

    /// False when there is no console to be asked; info then means nothing.
    virtual bool read(Info& info) = 0;
    virtual void setCursor(Position position) = 0;
    virtual void setAttribute(std::uint16_t attribute) = 0;
    /// Writes all bytes (UTF-8) to standard output, whichever stream this is the screen of. The
    /// text goes on at the right edge in the next line and scrolls the buffer at its end.
    virtual void write(std::string_view text) = 0;
    /// Put blanks, or the attribute, into count cells, line after line; they stop at the buffer's
    /// end. The cursor stays.
    virtual void fillBlanks(Position from, int count) = 0;
    virtual void fillAttribute(Position from, int count, std::uint16_t attribute) = 0;
    /// Moves the window down the buffer, up when rows is negative.
    virtual void moveWindow(std::int16_t rows) = 0;
};

/// The screen that the stream shows on at this moment; null when the stream is no such console. It
/// belongs to the platform and stays valid: after the console closes, its calls fail.
Screen* screenOf(platform::StandardStream stream);

/// Returns the screen of a Win32 console handle, which stays the caller's and must outlive it; null
/// if the handle is not a console's, and on other systems.
std::unique_ptr<Screen> screenOf(void* handle);

}  // namespace sys
