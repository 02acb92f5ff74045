#pragma once

#include "core/stream/FileStream.h"

namespace sys {

/// Opens path to be read as a whole: 0, or a negative error code. What is no regular file gives
/// -ENOTSUP: a device such as /dev/zero never ends, and a pipe says nothing of its end.
int openRegular(core::FileStream& file, core::String const& path);

}  // namespace sys
