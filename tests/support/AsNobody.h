#pragma once

#include <unistd.h>

namespace support {

/// Takes root's powers away from the process for a while, so that access rights count.
class AsNobody {
public:
    AsNobody() : user_(geteuid()) {
        if (user_ == 0 && seteuid(65534) != 0) {
            _exit(1);
        }
    }
    AsNobody(AsNobody const&) = delete;
    AsNobody& operator=(AsNobody const&) = delete;
    ~AsNobody() {
        if (seteuid(user_) != 0) {
            _exit(1);
        }
    }

private:
    uid_t user_;
};

}  // namespace support
