#pragma once

#include <cstddef>

namespace sys::platform {

/// Whether standard output is, at this moment, a terminal that understands control sequences.
bool terminalTakesSequences();

/// Writes all bytes to standard output at once, unbuffered, so that a reader of a pipe sees them as
/// they happen. An output that is closed, full or gone is ignored: it must not end an update.
void writeStandardOutput(char const* text, std::size_t length);

}  // namespace sys::platform
