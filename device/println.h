#pragma once

#include "core/text/String.h"

namespace device {

/// Writes a line to the console. Devices on several addresses write from several threads.
void println(core::String const& text);

}  // namespace device
