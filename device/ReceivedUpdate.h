#pragma once

#include "core/text/String.h"
#include "device/UpdatePolicy.h"
#include "sys/AtomicFile.h"

namespace device {

/// Keeps an update in a file while it arrives, where it is to be checked as an archive or stored.
/// Unless it was stored, the file is deleted with this object.
class ReceivedUpdate {
public:
    /// Names of stored files begin with device. The policy must outlive this object.
    ReceivedUpdate(UpdatePolicy const& policy, core::String const& device);
    ReceivedUpdate(ReceivedUpdate const&) = delete;
    ReceivedUpdate& operator=(ReceivedUpdate const&) = delete;

    bool RequiresArchive() const { return policy_.archivesOnly; }
    bool Stores() const { return !policy_.folder.empty(); }

    /// Creates the file unless it is open: 0 or a negative errno value.
    int Open();
    /// The path of the stored file or, where updates are not stored, the directory of temporary
    /// files. Empty before Open.
    core::String const& Path() const { return path_; }
    /// The open file; null before Open has returned 0.
    core::Stream* File() { return file_.IsOpened() ? &file_ : nullptr; }

    /// Keeps length more bytes where they are needed: 0 or a negative errno value.
    int Append(void const* bytes, int length);
    /// Gives the file its name in the directory, "device-number.rvl": 0 or a negative errno value.
    /// Until then no file of that name exists.
    int Store();

private:
    UpdatePolicy const& policy_;
    core::String const device_;
    core::String path_;
    sys::AtomicFile file_;
};

}  // namespace device
