#pragma once

#include "core/stream/HandleStream.h"
#include "core/text/String.h"

namespace core {

/// A file opened by its path.
class FileStream : public HandleStream {
public:
    char const* ClassName() const override;

    /// Opens path; mode holds bits of sys::platform::FileMode (0x100 read, 0x200 write, ...).
    /// A file opened before is closed first. Returns 0, or a negative error code; a folder is no
    /// file (-EISDIR).
    int Open(String const& path, unsigned mode);
};

}  // namespace core
