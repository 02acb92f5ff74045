#pragma once

#include "core/text/String.h"

namespace sys {
class Screen;
}

namespace core {

/// Colours and cursor control as texts (ECMA-48 control sequences), and the one way to write text
/// that may hold them. On a terminal that understands the sequences they pass through; on a console
/// that is driven by calls they are carried out; anywhere else the text arrives without them.
///
/// The builders leave out a number that the terminal assumes anyway: 1 for the distance of a move,
/// 0 for the others.
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
    /// From the cursor to the end, from the start to the cursor, or everything.
    enum class EraseScreen { toEnd, toStart, all };
    enum class EraseLine { toEnd, toStart, all };
    enum class Blink { off, slow, fast };

    Console() = delete;

    /// Makes every builder below return the empty text, so that output is plain; off at first.
    static void setPlain(bool plain);

    /// ESC "[" params letter.
    static String escape(String const& letter, String const& params);
    /// ESC "[" n letter; with omit the number is left out.
    static String escape(String const& letter, int n, bool omit);
    /// Select graphic rendition n; 0, the reset, goes without a number.
    static String sgr(int n);
    /// The same with more parameters behind n.
    static String sgr(int n, String const& more);

    static String cursor(Direction d, int n);
    /// Cursor to the start of the line n lines up or down.
    static String prevLine(int n);
    static String nextLine(int n);
    /// Cursor to column n, or to a row and a column, counted from 1.
    static String setHorzPos(int n);
    static String setPos(int row, int column);
    static String eraseScreen(EraseScreen e);
    static String eraseLine(EraseLine e);
    static String scrollUp(int n);
    static String scrollDown(int n);
    /// There is one saved position, that of the last save.
    static String saveCursorPos();
    static String restoreCursorPos();

    /// Ends colours and attributes of every kind.
    static String reset();
    /// Off is code 21, which few terminals treat as the end of bold; reset() ends it everywhere.
    /// Programs that read the output rely on this code.
    static String bold(bool on);
    static String underline(bool on);
    static String blink(Blink b);
    static String invert(bool on);
    /// Font 0 (the usual one) to 9; empty for any other.
    static String font(unsigned n);

    /// Foreground, or background, colour from here on.
    static String color(Color c);
    static String background(Color c);
    /// false: the default colour. true: the same and then a reset of everything.
    static String color(bool reset);
    static String background(bool reset);
    /// One of 16 million colours.
    static String color(unsigned char r, unsigned char g, unsigned char b);
    static String background(unsigned char r, unsigned char g, unsigned char b);
    /// One of 24 greys, from black, 0, to white, 255.
    static String color(unsigned char level);
    static String background(unsigned char level);
    /// The number, 16 to 231, of the nearest darker colour in the 6 x 6 x 6 cube of a terminal with
    /// 256 colours.
    static int rgb2index(unsigned char r, unsigned char g, unsigned char b);
    /// The text in the colour, with the default colour behind it.
    static String color(String const& text, Color c);

    /// Writes text to standard output, prompt and whole, with a line feed behind it when newline
    /// is set. Where it goes is found out anew each time. Nothing is reported at once: a console
    /// that has gone away must not end an update. Text that the C library still buffers for
    /// standard output is written first.
    static void write(String const& text, bool newline);
    /// The same, except that the sequences are meant for the console of standard error. The text
    /// itself goes to standard output all the same, as those who collect it there expect.
    static void ewrite(String const& text, bool newline);
    /// The same, except that the sequences are executed on the Win32 console with that handle; they
    /// are ignored if it is not a console. Other systems have no such handles and ignore it. The
    /// handle stays the caller's.
    static void write(void* handle, String const& text, bool newline);
    /// Whether anything that was written to standard output so far has not arrived there.
    static bool hasLostText();
    /// Writes text to the screen and carries out the sequences on it; see ConsoleInterpreter.
    static void write(sys::Screen& screen, String const& text, bool newline);

    /// The text as it appears where no sequence is understood: every sequence (ESC "[", digits and
    /// semicolons, one letter) is dropped, one that the text cuts short as well.
    static String withoutSequences(String const& text);

private:
    static bool plain_;
};

}  // namespace core
