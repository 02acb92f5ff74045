#include "sys/findPaths.h"

#include <algorithm>
#include <vector>

#include "sys/matchesPattern.h"
#include "sys/platform/Files.h"

namespace sys {

int findPaths(core::String const& folder, core::String const& pattern, bool subFolders,
              bool folders, core::StringArray& paths) {
    std::vector<platform::DirectoryEntry> entries;
    int const result =
        platform::listDirectory(folder.IsEmpty() ? "." : folder.getCString(), entries);
    if (result != 0) {
        return result;
    }
    std::sort(entries.begin(), entries.end(),
              [](auto const& left, auto const& right) { return left.name < right.name; });
    for (platform::DirectoryEntry const& entry : entries) {
        bool const isFolder = entry.type == platform::FileType::directory;
        core::String const path = folder.AppendNewPath(entry.name.c_str());
        if ((folders || !isFolder) && matchesPattern(entry.name, pattern.View())) {
            paths.Add(path);
        }
        // The limit on the length of a path ends the descent.
        if (subFolders && isFolder && !entry.isLink) {
            findPaths(path, pattern, subFolders, folders, paths);
        }
    }
    return 0;
}

}  // namespace sys
