#pragma once

#include <sched.h>
#include <sys/mount.h>

#include <string>

namespace support {

/// Mounts a disk of 64 KiB on a folder; false when that is not allowed. Only this process sees it,
/// and it goes away with the process.
inline bool mountSmallDisk(std::string const& folder) {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("disk", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
}

}  // namespace support
