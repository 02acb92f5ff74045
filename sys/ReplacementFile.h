#pragma once

#include <string>

#include "core/stream/HandleStream.h"
#include "core/text/String.h"

namespace sys {

/// A new file in the directory of a target, whose name it gets when it is complete. Until then it
/// has a unique name, and it is deleted unless it is completed: the target is never half a file.
class ReplacementFile : public core::HandleStream {
public:
    ~ReplacementFile() override;

    char const* ClassName() const override;

    /// Creates the file, open for writing and with permissions for its owner only. An existing
    /// target must be a regular file (-EISDIR, -ENOTSUP) with permission to write; of a link to a
    /// file, that file is the target. Returns 0 or a negative errno value.
    int Create(core::String const& target);
    /// Closes the file and renames it to the target. An existing file is replaced if replace is
    /// set; otherwise it stays (-EEXIST). Returns 0 or a negative errno value.
    int TakeOver(bool replace);

private:
    core::String target_;
    std::string path_;  ///< the unique name; empty unless a file exists under it
};

}  // namespace sys
