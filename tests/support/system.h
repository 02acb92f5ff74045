#pragma once

#include "sys/platform/PathStyle.h"

namespace support {

inline bool onWindows() {
    return sys::pathStyle().hasDrives;
}

/// Sets an environment variable; a null value removes it. Returns false on failure.
bool setVariable(char const* name, char const* value);

/// Returns the number of open descriptors or handles of the process, or 0 if unknown.
long openDescriptors();

}  // namespace support
