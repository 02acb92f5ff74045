#include "update/print.h"

#include "core/console/Console.h"

namespace update {

using core::Console;
using core::String;

namespace {

/// Covers the tail of a longer report before.
char const coveringBlanks[] = "          ";

bool lastLineWasProgress = false;

}  // namespace

void printProgress(String const& text) {
    if (lastLineWasProgress) {
        Console::write(Console::prevLine(1).AppendNew(Console::setHorzPos(1)), false);
    }
    Console::write(lastLineWasProgress ? text.AppendNew(coveringBlanks) : text, true);
    lastLineWasProgress = true;
}

void print(String const& text, bool lineEnd) {
    Console::write(text, lineEnd);
    lastLineWasProgress = false;
}

void println(String const& text, bool lineEnd) {
    print(text, lineEnd);
}

void print(int indent, String const& text, bool lineEnd) {
    print(indent > 0 ? String::OfChar('\t', indent).AppendNew(text) : text, lineEnd);
}

void println(int indent, String const& text, bool lineEnd) {
    print(indent, text, lineEnd);
}

}  // namespace update
