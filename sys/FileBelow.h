#pragma once

#include "core/stream/HandleStream.h"
#include "core/text/String.h"
#include "sys/platform/FilesBelow.h"

namespace sys {

/// A new file at a path in a confined directory: see sys/platform/FilesBelow.h for the form of the
/// path. Until it is complete it has a random name of its own, and it is deleted unless it is
/// completed.
class FileBelow : public core::HandleStream {
public:
    /// The directory must be open and outlive this object.
    explicit FileBelow(platform::ConfinedDirectory const& directory) : directory_(directory) {}
    ~FileBelow() override;

    char const* ClassName() const override;

    /// Creates the file, open for writing, and the missing directories of path. Returns 0 or a
    /// negative errno value.
    int Create(core::String const& path);
    /// Closes the file and renames it to its path. An existing file is replaced if replace is set,
    /// and its permissions are kept; otherwise it stays (-EEXIST). Returns 0 or a negative errno
    /// value.
    int TakeOver(bool replace);

private:
    platform::ConfinedDirectory const& directory_;
    core::String name_;
    core::String temporaryPath_;
};

}  // namespace sys
