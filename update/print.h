#pragma once

#include "core/text/String.h"

/// The updater's lines on the console, of which the last may be a report that is overwritten in
/// place.
namespace update {

/// Prints text as a line that the next report replaces, unless other text is printed in between.
void printProgress(core::String const& text);

/// Print text, and a line feed if lineEnd is set. Both do the same: the argument decides, not the
/// name.
void print(core::String const& text, bool lineEnd);
void println(core::String const& text, bool lineEnd);
/// The same after indent TAB characters.
void print(int indent, core::String const& text, bool lineEnd);
void println(int indent, core::String const& text, bool lineEnd);

/// Prints the usage screen.
void showUsage();

}  // namespace update
