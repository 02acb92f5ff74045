#pragma once

#include "core/text/String.h"

namespace core {

/// Colours and cursor control as texts (ECMA-48 control sequences), and the one way to write text
/// that may hold them. On a terminal that understands the sequences they pass through; anywhere
/// else the text arrives without them.
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

    Console() = delete;

    /// Makes every builder below return the empty text, so that output is plain; off at first.
    static void setPlain(bool plain);

    /// ESC "[" params letter.
    static String escape(String const& letter, String const& params);
    /// ESC "[" n letter; with omit the number is left out.
    static String escape(String const& letter, int n, bool omit);
    /// Select graphic rendition n; 0, the reset, goes without a number.
    static String sgr(int n);

    /// Cursor to the start of the line n lines up.
    static String prevLine(int n);
    /// Cursor to column n, counted from 1.
    static String setHorzPos(int n);

    /// Foreground colour from here on.
    static String color(Color c);
    /// false: the default colour. true: the same and then a reset of everything.
    static String color(bool reset);
    /// The text in the colour, with the default colour behind it.
    static String color(String const& text, Color c);

    /// Writes text to standard output, prompt and whole, with a line feed behind it when newline
    /// is set. Nothing is reported: a console that has gone away must not end an update.
    static void write(String const& text, bool newline);

    /// The text as it appears where no sequence is understood: every sequence (ESC "[", digits and
    /// semicolons, one letter) is dropped, one that the text cuts short as well.
    static String withoutSequences(String const& text);

private:
    static bool plain_;
};

}  // namespace core
