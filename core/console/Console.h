#pragma once

#include "core/text/String.h"

namespace sys {
class Screen;
}

namespace core {

/// Builds ECMA-48 control sequences for colours and cursor control, and writes text that contains
/// them. A terminal that understands the sequences receives them; on a Win32 console that does not,
/// they are executed by calls; all other output is written without them.
///
/// The builders omit a number that is the terminal's default: 1 for the distance of a move, 0 for
/// the others.
class Console {
public:
    /// In the order of the ECMA-48 colour codes.
    enum class Color {
        black,
        red,
        green,
        yellow,
        blue,
        magenta,
        cyan,
        white,
        brightBlack,
        brightRed,
        brightGreen,
        brightYellow,
        brightBlue,
        brightMagenta,
        brightCyan,
        brightWhite,
    };
    enum class Direction { up, down, forward, back };
    /// From the cursor to the end, from the start to the cursor, or all.
    enum class EraseScreen { toEnd, toStart, all };
    enum class EraseLine { toEnd, toStart, all };
    enum class Blink { off, slow, fast };

    Console() = delete;

    /// Makes all builders of sequences return empty strings if plain is set. Initially off.
    static void setPlain(bool plain);

    /// Returns ESC "[" params letter.
    static String escape(String const& letter, String const& params);
    /// Returns ESC "[" n letter, without the number if omit is set.
    static String escape(String const& letter, int n, bool omit);
    /// Returns the SGR sequence (select graphic rendition) of code n; 0, the reset, has no number.
    static String sgr(int n);
    /// Returns the SGR sequence of code n and the parameters more.
    static String sgr(int n, String const& more);

    /// Moves the cursor n cells.
    static String cursor(Direction d, int n);
    /// Moves the cursor to the start of the line n lines up or down.
    static String prevLine(int n);
    static String nextLine(int n);
    /// Moves the cursor to column n, or to a row and a column, counted from 1.
    static String setHorzPos(int n);
    static String setPos(int row, int column);
    static String eraseScreen(EraseScreen e);
    static String eraseLine(EraseLine e);
    static String scrollUp(int n);
    static String scrollDown(int n);
    /// Only the last saved position can be restored.
    static String saveCursorPos();
    static String restoreCursorPos();

    /// Ends all colours and attributes.
    static String reset();
    /// Off is code 21, which few terminals treat as the end of bold. It stays because programs that
    /// read the output rely on it; reset() ends bold on every terminal.
    static String bold(bool on);
    static String underline(bool on);
    static String blink(Blink b);
    static String invert(bool on);
    /// Selects font 0 (the default) to 9; returns an empty string for a larger n.
    static String font(unsigned n);

    /// Sets the foreground or background colour of the text that follows.
    static String color(Color c);
    static String background(Color c);
    /// Returns to the default colour; if reset is set, also ends all attributes.
    static String color(bool reset);
    static String background(bool reset);
    /// Sets an RGB colour.
    static String color(unsigned char r, unsigned char g, unsigned char b);
    static String background(unsigned char r, unsigned char g, unsigned char b);
    /// Sets one of 24 greys, for a level from black, 0, to white, 255.
    static String color(unsigned char level);
    static String background(unsigned char level);
    /// Returns the index, 16 to 231, of the nearest darker colour in the 6 x 6 x 6 cube of a
    /// terminal with 256 colours.
    static int rgb2index(unsigned char r, unsigned char g, unsigned char b);
    /// Returns the text in the colour, followed by the default colour.
    static String color(String const& text, Color c);

    /// Writes all of text, then a line feed if newline is set, to standard output, unbuffered,
    /// after text that the C library has buffered for it. Detects the kind of output anew on each
    /// call. Returns no error: a closed console must not abort an update. See lines.h for whole
    /// lines.
    static void write(String const& text, bool newline);
    /// Does the same, but executes the sequences on the console of standard error. The text still
    /// goes to standard output, where scripts collect it.
    static void ewrite(String const& text, bool newline);
    /// Does the same, but executes the sequences on the Win32 console of handle, which stays the
    /// caller's. Ignores the sequences if handle is not a console's, as on all other systems.
    static void write(void* handle, String const& text, bool newline);
    /// Whether any write to standard output has failed so far.
    static bool hasWriteFailed();
    /// Writes text to the screen and executes the sequences on it; see ConsoleInterpreter.
    static void write(sys::Screen& screen, String const& text, bool newline);

    /// Returns text without its sequences (ESC "[", digits and semicolons, a letter) and without a
    /// truncated one at its end.
    static String withoutSequences(String const& text);
};

}  // namespace core
