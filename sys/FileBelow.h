#pragma once

#include "core/stream/HandleStream.h"
#include "core/text/String.h"

namespace sys {

/// A new file at a path below a folder, where neither the path nor the folder can be trusted: see
/// sys/platform/FilesBelow.h for how a path is written and that no link is followed. Until the file
/// is complete it has a name of its own, and unless it gets there it is deleted.
class FileBelow : public core::HandleStream {
public:
    ~FileBelow() override;

    char const* ClassName() const override;

    /// Makes the file, open for writing, with the folders on its way: 0, or a negative error code.
    int Create(core::String const& folder, core::String const& path);
    /// Closes the file and gives it its name; what has it is replaced or, unless replace is set,
    /// left alone (-EEXIST). 0, or a negative error code.
    int TakeOver(bool replace);

private:
    core::String folder_;
    core::String name_;
    core::String temporaryPath_;
};

}  // namespace sys
