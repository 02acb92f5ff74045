#pragma once

#include <functional>
#include <vector>

#include "core/archive/StreamSequencer.h"
#include "core/text/String.h"

namespace pack {

/// Returns the path of an extracted file, relative to the target directory: its destination, to
/// which its name is added if it ends with "/" or is empty. Absolute paths begin at the target
/// directory. Names are separated by "/" on every platform. Returns an empty string and stores the
/// reason in error if any supported platform would treat the path as anything but a plain path
/// below the directory: an archive is extracted everywhere or nowhere.
core::String extractionPath(core::StreamDescriptor const& file, core::String& error);

/// Receives the index of a file that cannot be extracted, and the reason.
using Reject = std::function<void(int index, core::String const& reason)>;

/// Returns the extraction path of each file. Calls reject for those whose path is invalid, the same
/// as another one's, ignoring case, or below another one; their paths are empty.
std::vector<core::String> extractionPaths(core::StreamSequencer const& archive,
                                          Reject const& reject);

}  // namespace pack
