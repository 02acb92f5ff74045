#pragma once

#include "core/text/String.h"

namespace device {

/// What a device takes for an update, and what becomes of it.
struct Intake {
    /// Anything else than a sound archive is refused.
    bool archivesOnly = false;
    /// Where whole updates are stored; empty: nowhere.
    core::String folder;
};

}  // namespace device
