#pragma once

namespace device {

/// The timeouts of a device, in milliseconds.
struct DeviceTimeouts {
    /// For a record, and for the next bytes of the file. The updater reads its whole file once
    /// before it sends its request, which takes a while on a slow disk.
    int idle = 60'000;
    /// For the updater to close its side after the device has shut down sending.
    int close = 2'000;
};

}  // namespace device
