#pragma once

#include "core/stream/HandleStream.h"
#include "core/text/String.h"

namespace core {

/// A file opened by its path.
class FileStream : public HandleStream {
public:
    char const* ClassName() const override;

    /// Closes the current file, if any, and opens path; mode is a combination of
    /// sys::platform::FileMode bits. Returns 0 or a negative errno value: -EISDIR for a directory.
    int Open(String const& path, unsigned mode);
};

}  // namespace core
