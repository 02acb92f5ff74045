#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/text/String.h"
#include "sys/AtomicFile.h"
#include "update/protocol/records.h"

namespace device {

/// The updates that a device accepts, and where it stores them.
struct UpdatePolicy {
    /// Whether to reject any file that is not a valid archive.
    bool archivesOnly = false;
    // Not core::String: devices on several threads read these.

    /// The directory to store complete updates in; empty to store none.
    std::string directory;
    /// If set: whether to reject any file that is not a valid archive for this target. An archive
    /// without a target ID is for any target.
    std::optional<std::string> target = {};
    /// The size of the largest update in bytes.
    std::uint32_t maxSize = update::largestFile;
};

/// Holds an incoming update in a file if it is to be checked or stored. The file is deleted with
/// this object unless it was stored.
class ReceivedUpdate {
public:
    /// Names of stored files begin with device. The policy must outlive this object.
    ReceivedUpdate(UpdatePolicy const& policy, core::String const& device);
    ReceivedUpdate(ReceivedUpdate const&) = delete;
    ReceivedUpdate& operator=(ReceivedUpdate const&) = delete;

    UpdatePolicy const& Policy() const { return policy_; }
    bool RequiresArchive() const { return policy_.archivesOnly || policy_.target; }
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
