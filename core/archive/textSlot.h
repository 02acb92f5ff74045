#pragma once

#include "core/text/String.h"

/// Texts in an archive: a slot of a fixed number of UTF-16 units, little-endian, with a zero unit
/// behind a shorter text. In memory they are UTF-8.
namespace core::archive {

/// The text of a slot, up to its zero unit or its end. A surrogate without its other half becomes
/// the replacement character, so what comes out is always sound UTF-8.
String readTextSlot(unsigned char const* slot, int units);

enum class SlotResult { written, tooLong, notUtf8 };
/// Fills the whole slot; unless all of text fits, its content is not to be used.
[[nodiscard]] SlotResult writeTextSlot(String const& text, unsigned char* slot, int units);

}  // namespace core::archive
