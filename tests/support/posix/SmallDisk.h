#pragma once

#include <sched.h>
#include <sys/mount.h>

#include <string>

namespace support {

/// A disk of 64 KiB on a folder, which only this process sees, and only as long as this lives.
class SmallDisk {
public:
    explicit SmallDisk(std::string const& folder)
        : directory_(folder),
          mounted_(unshare(CLONE_NEWNS) == 0 &&
                   mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("disk", folder.c_str(), "tmpfs", 0, "size=64k") == 0) {}
    SmallDisk(SmallDisk const&) = delete;
    ~SmallDisk() {
        if (mounted_) {
            umount2(directory_.c_str(), MNT_DETACH);
        }
    }

    /// False when it is not allowed.
    bool IsMounted() const { return mounted_; }

private:
    std::string const directory_;
    bool const mounted_;
};

}  // namespace support
