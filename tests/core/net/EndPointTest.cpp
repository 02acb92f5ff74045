#include <gtest/gtest.h>

#include "core/net/Address.h"
#include "core/net/EndPoint.h"
#include "core/net/InfoSocketAddr.h"
#include "core/net/InterfaceAddress.h"

namespace {

using namespace core;

TEST(EndPoint, IsCreatedFromTextsNumbersAndAddresses) {
    EndPoint const text("127.0.0.1|3007", SocketDomain::IPv4, SocketType::stream);
    EXPECT_STREQ(text.ClassName(), "EndPoint");
    EXPECT_STREQ(text.GetAddress().getCString(), "127.0.0.1");
    EXPECT_STREQ(text.GetService().getCString(), "3007");
    EXPECT_EQ(text.GetPort(), 3007);
    for (EndPoint const& same :
         {EndPoint("127.0.0.1", 3007, SocketDomain::IPv4, SocketType::stream),
          EndPoint("127.0.0.1", "3007", SocketDomain::unspecified, SocketType::stream),
          EndPoint(IPv4Address(127, 0, 0, 1, 3007).GetAddressInfo(true), SocketType::stream)}) {
        EXPECT_TRUE(same.SameAs(text));
        EXPECT_EQ(same.GetDomain(), SocketDomain::IPv4);
        EXPECT_STREQ(same.GetComposedAddress().getCString(), "127.0.0.1|3007");
    }
    EXPECT_FALSE(text.SameAs(EndPoint(IPv4Address(127, 0, 0, 1, 1), SocketType::stream)));
    EXPECT_FALSE(text.SameAs(EndPoint(IPv4Address(127, 0, 0, 1, 3007), SocketType::datagram)));

    EndPoint six(IPv6Address("::1|80"), SocketType::datagram);
    EXPECT_EQ(six.GetDomain(), SocketDomain::IPv6);
    EXPECT_TRUE(six.SameAs(EndPoint(Address::GetInfo("::1|80", true), six.GetType())));
    six.ResetAddress();
    EXPECT_FALSE(six.GetSocketAddress());
    EXPECT_EQ(six.GetPort(), 80);
    six.VoidFields();
    EXPECT_TRUE(six.SameAs(EndPoint()));
    EXPECT_STREQ(EndPoint("h|7", {}, {}).GetService().getCString(), "7");
    EXPECT_EQ(EndPoint().GetPort(), noPort);
}

TEST(InterfaceAddress, FindsTheLoopback) {
    InterfaceAddress::List list;
    ASSERT_TRUE(InterfaceAddress::GetInterfacesList(list));
    int const at = list.FindAddress("127.0.0.1|99");
    ASSERT_GE(at, 0);
    EXPECT_STREQ(list.ClassName(), "List");
    EXPECT_STREQ(list[at].ClassName(), "InterfaceAddress");
    EXPECT_EQ(list.FindAddress(IPv4Address(127, 0, 0, 1)), at);
    EXPECT_STREQ(list[at].GetMask().getCString(), "255.0.0.0");
    EXPECT_EQ(list.FindName(list[0].GetName()), 0);
    int const last = list.Count() - 1;
    EXPECT_EQ(list.FindName(list[last].GetName(), last), last);
    EXPECT_EQ(list.FindAddress("127.0.0.1", list.Count()), -1);
    EXPECT_EQ(list.FindAddress("nonsense"), -1);
    EXPECT_EQ(list.FindName("no such interface"), -1);
    ASSERT_TRUE(InterfaceAddress::GetInterfacesList(list, SocketDomain::IPv6));
    EXPECT_EQ(list.FindAddress("127.0.0.1"), -1);
}

}  // namespace
