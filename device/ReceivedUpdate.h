#pragma once

#include <string>

#include "core/text/String.h"
#include "sys/AtomicFile.h"

namespace device {

/// The updates that a device accepts, and where it stores them.
struct UpdatePolicy {
    /// Whether to reject any file that is not a valid archive.
    bool archivesOnly = false;
    /// The directory to store complete updates in; empty to store none. Not a core::String: devices
    /// on several threads read it.
    std::string directory;
};

/// Holds an incoming update in a file if it is to be checked or stored. The file is deleted with
/// this object unless it was stored.
class ReceivedUpdate {
public:
    /// Names of stored files begin with device. The policy must outlive this object.
    ReceivedUpdate(UpdatePolicy const& policy, core::String const& device);
    ReceivedUpdate(ReceivedUpdate const&) = delete;
    ReceivedUpdate& operator=(ReceivedUpdate const&) = delete;

    bool RequiresArchive() const { return policy_.archivesOnly; }
    bool Stores() const { return !policy_.directory.empty(); }

    /// Creates the file unless it is open. Returns 0 or a negative errno value.
    int Open();
    /// The path of the stored file or, if updates are not stored, the directory for temporary
    /// files. Empty before Open.
    core::String const& Path() const { return path_; }
    /// The open file, owned by this object; null before Open has returned 0.
    core::Stream* File() { return file_.IsOpened() ? &file_ : nullptr; }

    /// Appends length bytes if the update is to be checked or stored. Returns 0 or a negative errno
    /// value.
    int Append(void const* bytes, int length);
    /// Renames the complete file to "device-number.rvl" in the directory. Returns 0 or a negative
    /// errno value; an existing file is kept (-EEXIST).
    int Store();

private:
    UpdatePolicy const& policy_;
    core::String const device_;
    core::String path_;
    sys::AtomicFile file_;
};

}  // namespace device
