#pragma once

#include <string>

#include "core/stream/HandleStream.h"
#include "core/text/String.h"

namespace sys {

/// A new file beside a target, whose name it takes over when it is complete. Until then it has a
/// name of its own, and unless it gets there it is deleted: nobody ever sees half a file.
class ReplacementFile : public core::HandleStream {
public:
    ~ReplacementFile() override;

    char const* ClassName() const override;

    /// Makes the file, for its owner only and open for writing, in the folder of target: 0, or a
    /// negative error code. A target that is there must be a regular file (-EISDIR, -ENOTSUP) that
    /// may be written. Where target is a link to a file, that file is the target.
    int Create(core::String const& target);
    /// Closes the file and moves it to the target's name; a file that got there in the meantime is
    /// replaced or, unless replace is set, left alone (-EEXIST). 0, or a negative error code.
    int TakeOver(bool replace);

private:
    core::String target_;
    std::string path_;  ///< empty unless the file still has a name of its own
};

}  // namespace sys
