#pragma once

// The system's error numbers in the words that the platform's headers use: errno values.

namespace sys::platform {

/// The errno value for an error number of the system's or of its socket library; EIO for one that
/// has no better.
int errnoOf(unsigned long error);

/// The negative errno value of the calling thread's last failed system call.
int negativeLastError();

/// The result of a call that answers false on failure: 0, or the negative errno value.
int resultOf(bool succeeded);

}  // namespace sys::platform
