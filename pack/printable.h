#pragma once

#include "core/text/String.h"

/// Texts of an archive on their way out: whoever made it must not get to rule a terminal or a file
/// that a program reads.
namespace pack {

/// The text with "?" for every control character, for those that turn the direction of what
/// follows, and for what is no UTF-8.
core::String printable(core::String const& text);
/// The number of characters, which a table lines up by.
int characters(core::String const& utf8);
/// The text as JSON writes it, with its quotes.
core::String quoted(core::String const& text);
/// "0x" and the given number of hexadecimal digits.
core::String hex(unsigned long long value, int digits);
/// Octal, as chmod takes permission bits.
core::String octal(unsigned bits);

}  // namespace pack
