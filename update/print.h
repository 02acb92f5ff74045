#pragma once

#include "core/text/String.h"

/// The updater's lines on the console, with one running report that is overwritten in place.
namespace update {

/// Writes text as a line that the next report replaces, as long as nothing else is printed between.
void printProgress(core::String const& text);

/// Write text, with a line end when lineEnd is set. The two are the same: the argument decides
/// about the line end, not the name.
void print(core::String const& text, bool lineEnd);
void println(core::String const& text, bool lineEnd);
/// The same behind indent TAB characters.
void print(int indent, core::String const& text, bool lineEnd);
void println(int indent, core::String const& text, bool lineEnd);

/// Returns the line of an error, an entry of title "=" message: "*** title: message". An "=" inside
/// the message becomes ": " as well; scripts that read the output expect it.
core::String errorLine(core::String const& entry);

}  // namespace update
