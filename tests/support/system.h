#pragma once

#include <cstdio>
#include <string>

#include "sys/platform/PathStyle.h"

namespace support {

inline bool onWindows() {
    return sys::pathStyle().hasDrives;
}

/// Sets an environment variable; a null value removes it. Returns false on failure.
bool setVariable(char const* name, char const* value);

/// Returns the number of open descriptors or handles of the process, or 0 if unknown.
long openDescriptors();

/// Starts a shell command line and returns a pipe to read its output from. closePipe waits for the
/// command and returns its exit status.
std::FILE* openPipe(std::string const& command);
int closePipe(std::FILE* pipe);

}  // namespace support
