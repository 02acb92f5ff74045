#pragma once

#include "core/stream/HandleStream.h"
#include "core/text/String.h"
#include "sys/platform/Files.h"

namespace sys {

/// A temporary file in the target's directory, renamed to the target by Commit and deleted
/// otherwise, so the target is never a partial file. Its temporary name is random; the directory is
/// opened once, so it stays the same one even if it is renamed meanwhile.
class AtomicFile : public core::HandleStream {
public:
    enum class Existing { replace, keep };
    enum class Durable { yes, no };  ///< whether the data is flushed to disk before the rename

    ~AtomicFile() override;

    char const* ClassName() const override;

    // Each of these opens the file for reading and writing and returns 0 or a negative errno value.
    // A file created before and not committed is deleted.

    /// Creates the file next to target or to the file that target links to. An existing target
    /// must be a regular file with permission to write (-EISDIR, -ENOTSUP, -EACCES).
    int Create(core::String const& target,
               platform::PartPermissions permissions = platform::PartPermissions::ownerOnly);
    /// Creates the file and the missing directories of path, an untrusted path in directory: see
    /// platform::ConfinedDirectory. It has the permissions of the existing regular file at path, if
    /// any. directory must be open and outlive this object.
    int CreateConfined(platform::ConfinedDirectory const& directory, core::String const& path);
    /// Creates an owner-only file in sys::file::getTempPath(), for data that is never committed.
    /// Where the operating system allows it, the file has no name even while it is open: a killed
    /// process leaves nothing.
    int CreateNameless();

    /// Closes the file and renames it to the target. An existing file is replaced or kept
    /// (-EEXIST). Returns 0 or a negative errno value, such as -EBADF without a file to rename.
    [[nodiscard]] int Commit(Existing existing, Durable durable);

private:
    int CreatePart(core::String const& path, platform::PartPermissions permissions);
    void Discard();

    platform::ConfinedDirectory own_;
    platform::ConfinedDirectory const* directory_ = &own_;
    platform::PartPermissions permissions_ = platform::PartPermissions::ownerOnly;
    core::String path_;  ///< of the target in the directory
    core::String part_;  ///< the temporary name; empty unless a file has it
};

}  // namespace sys
