#pragma once

#include <string>

namespace device {

/// Which updates a device accepts, and where it stores them.
struct UpdatePolicy {
    /// Anything else than a sound archive is refused.
    bool archivesOnly = false;
    /// The directory where whole updates are stored; empty: nowhere. Devices on several threads
    /// read it, so it is not a core::String.
    std::string folder;
};

}  // namespace device
