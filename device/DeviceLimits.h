#pragma once

namespace device {

/// The time limits of a device, in milliseconds.
struct DeviceLimits {
    /// For a record, and for the next bytes of the file. The updater reads its whole file once
    /// before it sends its request, which takes a while on a slow disk.
    int silence = 60'000;
    /// For the updater to close its end once we have closed ours.
    int farewell = 2'000;
};

}  // namespace device
