#include "tests/support/StatusDirectory.h"

namespace {

// Linked into a program, it keeps the program's status file out of the system's folder.
support::StatusDirectory const elsewhere;

}  // namespace
