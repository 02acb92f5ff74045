#include "sys/file.h"
#include "sys/findPaths.h"

namespace sys::file {

core::StringArray search(core::String const& pattern, bool subFolders, bool folders) {
    core::StringArray paths;
    findPaths(pattern.GetFilePath(), pattern.GetFileName(), subFolders, folders, paths);
    return paths;
}

}  // namespace sys::file
