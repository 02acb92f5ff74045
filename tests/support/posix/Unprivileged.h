#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace support {

/// Runs the process without root's privileges while alive, so that permissions apply.
class Unprivileged {
public:
    Unprivileged() { EXPECT_EQ(seteuid(getuid() == 0 ? 65534 : getuid()), 0); }
    ~Unprivileged() { EXPECT_EQ(seteuid(getuid()), 0); }
};

}  // namespace support
