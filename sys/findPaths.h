#pragma once

#include "core/text/StringArray.h"

namespace sys {

/// Appends the paths of the entries of folder whose names match pattern, as sys::file::search
/// describes it. The empty folder is the current one, and the paths are then names alone. Returns
/// 0, or the negative error code of reading folder itself; folders below that cannot be read count
/// as empty.
int findPaths(core::String const& folder, core::String const& pattern, bool subFolders,
              bool folders, core::StringArray& paths);

}  // namespace sys
