#pragma once

#include "core/runtime/AppStatus.h"
#include "tests/support/TemporaryDirectory.h"

namespace support {

/// Keeps the status file of an application that is constructed after it out of the system's folder:
/// a base class or a member that stands before the application.
struct StatusDirectory : TemporaryDirectory {
    StatusDirectory() { core::AppStatus::SetDirectory(Path().c_str()); }
};

}  // namespace support
