#include "core/console/lines.h"

#include <mutex>

#include "core/console/Console.h"

namespace core {

namespace {

/// Covers the tail of a longer report.
char const coveringSpaces[] = "          ";

std::mutex lock;
bool replacesReport = false;  ///< whether the next report overwrites the last line

void print(String const& text, bool newline) {
    std::lock_guard const locked(lock);
    Console::write(text, newline);
    replacesReport = false;
}

}  // namespace

void printLine(String const& text) {
    print(text, true);
}

void printText(String const& text) {
    print(text, false);
}

void printReport(String const& text) {
    std::lock_guard const locked(lock);
    if (replacesReport) {
        Console::write(Console::prevLine(1).AppendNew(Console::setHorzPos(1)), false);
    }
    Console::write(replacesReport ? text.AppendNew(coveringSpaces) : text, true);
    replacesReport = true;
}

}  // namespace core
