#pragma once

#include "core/archive/StreamDescriptor.h"
#include "core/text/String.h"

namespace pack {

/// The path below the unpacking folder that a file is laid at: its destination, to which its name
/// is added where it ends with "/" or is empty. A path from the root begins at the unpacking
/// folder. Names are divided by "/", on every system.
/// Empty, with why as the reason, when any of our systems would take the path for something else
/// than a plain one below the folder: an archive unpacks everywhere or nowhere.
core::String unpackPath(core::StreamDescriptor const& file, core::String& why);

}  // namespace pack
