#pragma once

#include <string>

namespace device {

/// What a device takes for an update, and what becomes of it.
struct Intake {
    /// Anything else than a sound archive is refused.
    bool archivesOnly = false;
    /// The directory where whole updates are stored; empty: nowhere. Devices on several threads
    /// read it, so it is not a core::String.
    std::string folder;
};

}  // namespace device
