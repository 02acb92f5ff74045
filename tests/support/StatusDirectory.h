#pragma once

#include "core/runtime/AppStatus.h"
#include "tests/support/TemporaryDirectory.h"

namespace support {

/// A new directory for the status file of every application constructed later. Use it as the first
/// base class, or as a member before the application.
struct StatusDirectory : TemporaryDirectory {
    StatusDirectory() { core::AppStatus::SetDirectory(Path().c_str()); }
};

}  // namespace support
