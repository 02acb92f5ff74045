#pragma once

#include <string>
#include <vector>

#include "sys/platform/Files.h"

namespace sys::platform {

struct FolderEntry {
    std::string name;  ///< without its folder
    FileType type;     ///< of what a link leads to; other when it leads nowhere
    bool isLink;
};

// Operations return 0, or a negative error code as those on files do.

/// Appends the entries of a folder, in no order; the folder itself and its parent are left out.
int listFolder(char const* path, std::vector<FolderEntry>& entries);
/// 0 when path is a folder whose entries may be read.
int checkFolder(char const* path);
/// Makes one folder; its parent must be there and its own name free.
int createFolder(char const* path);

/// The folder of the process that relative paths begin in.
int changeFolder(char const* path);
int currentFolder(std::string& path);
/// The folder that the user wants temporary files in.
std::string temporaryFolder();

}  // namespace sys::platform
