#pragma once

#include "core/runtime/AppStatus.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

/// Keeps the status file of an application that is constructed after it out of the system's folder:
/// a base class or a member that stands before the application.
class StatusFolder {
public:
    StatusFolder() { core::AppStatus::setFolder(folder_.Path().c_str()); }

private:
    TemporaryFolder folder_;
};

}  // namespace support
