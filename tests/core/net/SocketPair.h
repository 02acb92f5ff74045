#pragma once

#include <gtest/gtest.h>

#include "core/net/Address.h"
#include "core/net/Socket.h"

/// Two connected sockets over loopback.
struct SocketPair {
    core::Socket near{core::SocketDomain::IPv4, core::SocketType::stream};
    core::ClassRef<core::Socket> far;

    SocketPair() {
        core::Socket listener(core::SocketDomain::IPv4, core::SocketType::stream);
        // Without a type, the chain has an entry for each type: Bind uses the first possible one.
        EXPECT_EQ(listener.Bind(core::Address::GetInfo("127.0.0.1|0", core::SocketDomain::IPv4,
                                                       core::SocketType::unspecified, true)),
                  0u);
        EXPECT_EQ(listener.Listen(), 0u);
        core::String address;
        EXPECT_EQ(listener.GetSockName(address, true), 0u);
        EXPECT_EQ(near.Connect(address), 0u);
        EXPECT_EQ(listener.Accept(far), 0u);
    }
};
