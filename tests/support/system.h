#pragma once

#include <cstdio>
#include <string>

#include "sys/platform/PathStyle.h"

// The system that the tests run on, where it shows.

namespace support {

inline bool onWindows() {
    return sys::pathStyle().hasDrives;
}

/// Sets a variable of the process's environment; null removes it. False when the system refuses.
bool setVariable(char const* name, char const* value);

/// How many files, sockets and the like this process has open; 0 where the system does not tell.
long openDescriptors();

/// A pipe that a shell command line writes to; closing it waits for the command's exit status.
std::FILE* openPipe(std::string const& command);
int closePipe(std::FILE* pipe);

}  // namespace support
