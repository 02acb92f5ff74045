#pragma once

#include <sched.h>
#include <sys/mount.h>

#include <string>

namespace support {

/// Mounts a disk of 64 KiB on a directory while alive, visible to this process only.
class SmallDisk {
public:
    explicit SmallDisk(std::string const& directory)
        : directory_(directory),
          mounted_(unshare(CLONE_NEWNS) == 0 &&
                   mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("disk", directory.c_str(), "tmpfs", 0, "size=64k") == 0) {}
    SmallDisk(SmallDisk const&) = delete;
    ~SmallDisk() {
        if (mounted_) {
            umount2(directory_.c_str(), MNT_DETACH);
        }
    }

    /// False if mounting is not permitted.
    bool IsMounted() const { return mounted_; }

private:
    std::string const directory_;
    bool const mounted_;
};

}  // namespace support
