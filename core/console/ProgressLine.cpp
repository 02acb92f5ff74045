#include "core/console/ProgressLine.h"

#include "core/console/Console.h"

namespace core {

namespace {

/// Covers the tail of a longer report before.
char const coveringBlanks[] = "          ";

}  // namespace

void ProgressLine::Show(String const& text) {
    if (shown_) {
        Console::write(Console::prevLine(1).AppendNew(Console::setHorzPos(1)), false);
    }
    Console::write(shown_ ? text.AppendNew(coveringBlanks) : text, true);
    shown_ = true;
}

}  // namespace core
