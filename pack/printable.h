#pragma once

#include "core/text/String.h"

/// Forms of text in listings; see also core/text/printable.h.
namespace pack {

/// The number of characters, which a table lines up by.
int characters(core::String const& utf8);
/// The text as JSON writes it, with its quotes.
core::String quoted(core::String const& text);
/// Octal, as chmod takes permission bits.
core::String octal(unsigned bits);

}  // namespace pack
