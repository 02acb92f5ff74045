#pragma once

#include <cstddef>

namespace sys::platform {

enum class StandardStream { output, error };

/// Whether text on standard output may, at this moment, hold control sequences meant for the
/// stream: both are terminals that understand them.
bool terminalTakesSequences(StandardStream stream);

/// Writes all bytes to standard output at once, unbuffered, so that a reader of a pipe sees them as
/// they happen. False when the output is closed, full or gone: that must not end an update.
bool writeStandardOutput(char const* text, std::size_t length);

}  // namespace sys::platform
