#pragma once

#include <cstdint>

#include "core/text/String.h"

namespace core {

/// One step of a "select graphic rendition" sequence on a screen (see sys::Screen::Info for the
/// attribute's bits): takes codes off the front of codes, which semicolons separate, up to the
/// first that means something, and changes the attribute as that one says, perhaps not at all.
/// False when none is left.
bool nextRendition(String& codes, std::uint16_t& attribute);

}  // namespace core
