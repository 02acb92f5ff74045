#include "tests/support/StatusFolder.h"

namespace {

// Linked into a program, it keeps the program's status file out of the system's folder.
support::StatusFolder const elsewhere;

}  // namespace
