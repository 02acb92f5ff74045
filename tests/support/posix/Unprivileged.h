#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace support {

/// Takes root's powers away from the process for a while, so that access rights count.
class Unprivileged {
public:
    Unprivileged() { EXPECT_EQ(seteuid(getuid() == 0 ? 65534 : getuid()), 0); }
    ~Unprivileged() { EXPECT_EQ(seteuid(getuid()), 0); }
};

}  // namespace support
