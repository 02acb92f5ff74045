#pragma once

#include <string>
#include <vector>

namespace sys::platform {

/// Makes the process safe for network work; called once at start-up. A write to a peer or a reader
/// that has gone away fails instead of ending the process, and no file or socket opened later can
/// take the place of a standard stream that was closed by the caller.
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
