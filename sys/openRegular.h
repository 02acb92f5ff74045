#pragma once

#include "core/stream/FileStream.h"
#include "core/stream/MemoryStream.h"

namespace sys {

/// Opens path to be read as a whole: 0, or a negative error code. What is no regular file gives
/// -ENOTSUP: a device such as /dev/zero never ends, and a pipe says nothing of its end.
int openRegular(core::FileStream& file, core::String const& path);

/// Reads the whole regular file at path into memory and seeks to where its text starts: after the
/// UTF-8 byte order mark that some editors write. Returns 0 or a negative errno value; -EFBIG for
/// more than INT_MAX bytes.
int readRegular(core::MemoryStream& memory, core::String const& path);

}  // namespace sys
