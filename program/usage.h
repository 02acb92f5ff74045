#pragma once

#include <initializer_list>

#include "core/text/String.h"

/// Usage screens, in the colours that all programs share.
namespace program::usage {

/// A line of a usage screen: an option and its meaning, or any other text.
struct Line {
    core::String text;          ///< of an option: "-o, --output"
    core::String meaning = {};  ///< empty if the line is not that of an option
};

/// Returns the text of "Usage:", "where:" and the like.
core::String heading(core::String const& text);
/// Returns a word that users type as it is.
core::String literal(core::String const& text);
/// Returns arguments that may be omitted.
core::String optional(core::String const& text);
/// Prints the lines, with the meanings of all options aligned, and an empty line.
void print(std::initializer_list<Line> lines);

}  // namespace program::usage
