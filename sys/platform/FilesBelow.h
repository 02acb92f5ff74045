#pragma once

#include "sys/platform/Files.h"

namespace sys::platform {

// Files below a folder, under names that come from somebody else. The folder is given as any path;
// below it a path is names with "/" between them, none of them empty, "." or ".." (-EINVAL), on
// every platform. No link is followed on the way, whoever puts it there and when: -ELOOP. Results
// are 0 or a negative error code, as those of Files.h.

/// The status of what stands at path itself, which may be a link.
int statBelow(char const* folder, char const* path, FileStatus& status);
/// Makes a new file (-EEXIST: something is there) and the folders on its way that are missing, and
/// opens it for writing.
int createBelow(char const* folder, char const* path, FileHandle& opened);
/// Gives the file at path another name in its own folder. What has that name goes away when
/// replace is set, a link instead of what it leads to; otherwise it is an error, -EEXIST.
int renameBelow(char const* folder, char const* path, char const* name, bool replace);
/// Deletes a file, or a link and not what it leads to.
int removeBelow(char const* folder, char const* path);

}  // namespace sys::platform
