#include "sys/platform/Sockets.h"

namespace {

// Linked into a test program, initialises the socket library.
bool const started = sys::platform::startSockets() == 0;

}  // namespace
