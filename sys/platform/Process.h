#pragma once

#include <string>
#include <vector>

namespace sys::platform {

/// Prepares the process for network work; called once at start-up. A write to a peer or a reader
/// that has closed, and a write beyond the file size limit, fail instead of ending the process.
/// Files and sockets opened later cannot take the place of a standard stream that the caller has
/// closed.
void prepareProcess();

/// From now on the process goes on when its terminal or console is closed, for as long as the
/// system lets it.
void outliveTerminal();

/// The words of the process's command line in UTF-8, its own name first; argc and argv are what
/// main was given.
std::vector<std::string> programArguments(int argc, char const* const* argv);

/// The number of the calling thread; no other running thread of the process has it.
unsigned currentThreadId();

/// Names the calling thread for debuggers and system tools; a name too long is cut, an empty one
/// changes nothing.
void nameThread(char const* name);

}  // namespace sys::platform
