#pragma once

#include "core/stream/FileStream.h"
#include "core/stream/MemoryStream.h"

namespace sys {

/// Opens the regular file at path for reading. Returns 0 or a negative errno value; -ENOTSUP for
/// devices, which may be endless (/dev/zero), and for pipes, which do not report their end.
int openRegular(core::FileStream& file, core::String const& path);

/// Reads the whole regular file at path into memory and seeks to where its text starts: after the
/// UTF-8 byte order mark that some editors write. Returns 0 or a negative errno value; -EFBIG for
/// more than INT_MAX bytes.
int readRegular(core::MemoryStream& memory, core::String const& path);

}  // namespace sys
