#include "sys/platform/Sockets.h"

namespace {

// Linked into a test program, it does what a program does before its first socket.
bool const started = sys::platform::startSockets();

}  // namespace
