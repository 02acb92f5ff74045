#pragma once

#include "core/runtime/AppStatus.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

/// Keeps the status file of an application that is constructed after it out of the system's folder:
/// a base class or a member that stands before the application.
struct StatusFolder : TemporaryFolder {
    StatusFolder() { core::AppStatus::setFolder(Path().c_str()); }
};

}  // namespace support
