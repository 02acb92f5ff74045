#include "tests/support/StatusDirectory.h"

namespace {

// Linked into a program, redirects its status file to a temporary directory.
support::StatusDirectory const directory;

}  // namespace
