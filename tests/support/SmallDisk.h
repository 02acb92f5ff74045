#pragma once

#include <sched.h>
#include <sys/mount.h>

#include <string>

namespace support {

/// A disk of 64 KiB on a folder, which only this process sees; it takes root to mount one. It
/// disappears with the process at the latest.
class SmallDisk {
public:
    explicit SmallDisk(std::string const& folder) : folder_(folder) {
        mounted_ = unshare(CLONE_NEWNS) == 0 &&
                   mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("disk", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
    }
    SmallDisk(SmallDisk const&) = delete;
    SmallDisk& operator=(SmallDisk const&) = delete;
    ~SmallDisk() {
        if (mounted_) {
            umount(folder_.c_str());
        }
    }

    bool IsMounted() const { return mounted_; }

private:
    std::string folder_;
    bool mounted_ = false;
};

}  // namespace support
