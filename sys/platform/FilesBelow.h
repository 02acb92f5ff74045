#pragma once

#include <string_view>

#include "sys/platform/Files.h"

namespace sys::platform {

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
    /// Creates a new file (-EEXIST if path exists), and the missing directories of path, and opens
    /// it for writing. If a regular file called like is in the same directory, the new file has its
    /// permissions from the start, as far as the system keeps them in the file.
    int Create(char const* path, char const* like, FileHandle& opened) const;
    /// Renames the file at path within its directory. An existing regular file or link called name
    /// is replaced if replace is set, otherwise it is an error (-EEXIST).
    int Rename(char const* path, char const* name, bool replace) const;
    /// Deletes the file at path, or a link and not its target.
    int Remove(char const* path) const;

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
