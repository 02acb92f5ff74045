#pragma once

#include <string_view>

#include "sys/platform/Files.h"

namespace sys::platform {

/// The permissions of a new file.
enum class PartPermissions {
    ownerOnly,  ///< as far as the file itself has permissions
    ofTarget,  ///< those of the existing regular file that it is to replace, or else the usual ones
};

/// A directory in which files are reached by paths from an untrusted source. It is opened once and
/// held: renaming it, or putting a link in its place, does not redirect later calls.
///
/// Paths are relative to it: names separated by "/", none of them empty, "." or ".." (-EINVAL), on
/// every platform. Links are never followed, even if created meanwhile: -ELOOP. Results are 0 or a
/// negative errno value.
class ConfinedDirectory {
public:
    ConfinedDirectory() = default;
    ConfinedDirectory(ConfinedDirectory const&) = delete;
    ConfinedDirectory& operator=(ConfinedDirectory const&) = delete;
    ~ConfinedDirectory() { Close(); }

    /// Opens the directory at path, a path of the platform whose links are followed. Closes the
    /// directory held before.
    int Open(char const* path);

    /// Whether the file system of the directory allows a name of this length. If its limit is
    /// unknown or no directory is open, the limit of the platform applies, if there is any.
    bool AllowsName(std::string_view name) const;
    /// Stores the status of the entry at path itself, which may be a link.
    int Stat(char const* path, FileStatus& status) const;
    // A part is the temporary file of a target: it is in the target's directory, under the name
    // part, which the caller chooses and which no untrusted source may predict.

    /// Creates the part of the target at path (-EEXIST if it exists), and the missing directories
    /// of path, and opens it for reading and writing.
    int CreatePart(char const* path, char const* part, PartPermissions permissions,
                   FileHandle& opened) const;
    /// Renames a part to its target; permissions are those that it was created with. An existing
    /// regular file or link is replaced if replace is set, otherwise it is an error (-EEXIST).
    int RenamePart(char const* path, char const* part, PartPermissions permissions,
                   bool replace) const;
    int RemovePart(char const* path, char const* part) const;

private:
    void Close() {
        if (directory_ != noFile) {
            closeFile(directory_);
            directory_ = noFile;
        }
    }

    FileHandle directory_ = noFile;
};

}  // namespace sys::platform
