#pragma once

#include "core/text/String.h"

/// The pieces of a usage screen, in the colours that all our programs share.
namespace core::usage {

/// "Usage:", "where:" and the like.
String heading(String const& text);
/// A word that the user types as it stands.
String literal(String const& text);
/// A word that stands for something optional.
String optional(String const& text);
/// The line of one option: its names, padded by the caller so that the colons line up, and ": "
/// with its meaning.
String option(String const& names, String const& meaning);

}  // namespace core::usage
