#pragma once

#include "core/text/String.h"

namespace core {

// The lines of a program on standard output. Any thread may print; calls never mix their output.
// The last line of the process may be a report, which the next report overwrites in place.

/// Prints text as a line.
void printLine(String const& text);
/// Prints text without a line feed.
void printText(String const& text);
/// Prints text as a line, over the last report unless other text followed it.
void printReport(String const& text);

}  // namespace core
