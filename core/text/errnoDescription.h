#pragma once

#include "core/text/String.h"

namespace core {

// Messages for error numbers, at most 2048 bytes.

/// Returns the operating system's message. On Windows, number is an error number of the system,
/// whose messages differ from those for errno values: 13 is "The data is invalid.".
String errnoDescription(int number);

/// Returns the C library's message for an errno value, on all systems: 13 is "Permission denied".
String cLibraryErrorText(int number);

}  // namespace core
