#pragma once

#include "core/archive/StreamDescriptor.h"
#include "core/text/String.h"

namespace pack {

/// Returns the path at which a file is extracted, relative to the target directory: its
/// destination, to which its name is added if it ends with "/" or is empty. Absolute paths begin at
/// the target directory. Names are separated by "/" on every platform. Returns an empty string and
/// stores the reason in why if any supported platform would treat the path as something else than a
/// plain path below the directory: an archive is extracted everywhere or nowhere.
core::String unpackPath(core::StreamDescriptor const& file, core::String& why);

}  // namespace pack
