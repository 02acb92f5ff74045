#include <gtest/gtest.h>

#include "core/net/Address.h"
#include "core/net/IPv4Address.h"
#include "core/net/InfoSocketAddr.h"

namespace {

using core::IPv4Address;

TEST(IPv4Address, SetParsesTheWholeText) {
    int const none = IPv4Address::noPort;
    struct Row {
        char const* text;
        bool good;
        char const* octets;  ///< what is left in the octets
        int port;
    } const rows[] = {
        {"192.168.0.10|5000", true, "192.168.0.10", 5000},
        {"192.168.0.10:5000", false, "192.168.0.0", none},
        {" 10.0.0.1 | 80 ", true, "10.0.0.1", 80},
        {"10.0.0.1|", true, "10.0.0.1", none},
        {"10.0.0.1", true, "10.0.0.1", none},
        {"10.0.0.1|80x", true, "10.0.0.1", none},
        {"10.0.0.1|70000", true, "10.0.0.1", 70000},
        {"10.0.0.1|-1", true, "10.0.0.1", -1},
        {"10.0.0.1|99999999999999999999", true, "10.0.0.1", 2147483647},
        {"10.0.0.1|-9999999999", true, "10.0.0.1", -2147483647},
        {"10.0.0.1|-2147483649", true, "10.0.0.1", -2147483647},
        {"10.0.0.1|-2147483648", true, "10.0.0.1", none},
        {"10.0.0.1|80|90", true, "10.0.0.1", none},
        {"|5000", false, "0.0.0.0", none},
        {"", false, "0.0.0.0", none},
        {"1.2.3", false, "0.0.0.0", none},
        {"1.2.3.4.5", false, "0.0.0.0", none},
        {"1.2.3.256", false, "1.2.3.0", none},
        {"1.2..3", false, "1.2.0.0", none},
        {"1.2.3.-4", false, "1.2.3.0", none},
        {"1.2.3.4294967296", false, "1.2.3.0", none},
        {"1.2.3.12ab", false, "1.2.3.0", none},
        {"1.2.3.0x4", false, "1.2.3.0", none},
        {"x.2.3.4", false, "0.0.0.0", none},
        {"001.02.3.4", true, "1.2.3.4", none},
        {"1.2.3.\xC2\xB2", false, "1.2.3.0", none},
    };
    for (Row const& row : rows) {
        IPv4Address address;
        EXPECT_EQ(address.Set(row.text), row.good) << row.text;
        EXPECT_STREQ(address.GetAsString(false).getCString(), row.octets) << row.text;
        EXPECT_EQ(address.Port(), row.port) << row.text;
        EXPECT_TRUE(IPv4Address(row.text).SameAs(address, true)) << row.text;
    }
    IPv4Address kept(9, 9, 9, 9, 99);
    EXPECT_FALSE(kept.Set("1.x.3.4|5"));
    EXPECT_STREQ(kept.GetAsString(true).getCString(), "1.9.9.9|99");
}

TEST(IPv4Address, IsValidIsMoreLenient) {
    for (char const* const good : {"1.2.3.4", " 1.2.3.4 ", "1.2.3.4.5", "255.255.255.255"}) {
        EXPECT_TRUE(IPv4Address::IsValid(good)) << good;
    }
    for (char const* const bad : {"", "1.2.3", "1.2..4", "1.2.3.4|5000", "1.2.3.256", "a.b.c.d"}) {
        EXPECT_FALSE(IPv4Address::IsValid(bad)) << bad;
    }
}

TEST(IPv4Address, Networks) {
    struct Row {
        char const* mask;
        char const* network;
        char const* broadcast;
        char const* first;
        char const* last;
    } const rows[] = {
        {"255.255.255.0", "192.168.1.0", "192.168.1.255", "192.168.1.1", "192.168.1.254"},
        {"255.0.255.0", "192.168.1.0", "192.168.1.255", "192.168.1.1", "192.168.1.254"},
        {"0.0.0.64", "192.168.1.64", "192.168.1.127", "192.168.1.65", "192.168.1.126"},
        {"255.255.255.255", "192.168.1.77", "192.168.1.77", "192.168.1.78", "192.168.1.76"},
        {"0.0.0.0", "0.0.0.0", "255.255.255.255", "0.0.0.1", "255.255.255.254"},
    };
    IPv4Address const address("192.168.1.77|80");
    for (Row const& row : rows) {
        IPv4Address const mask(row.mask);
        EXPECT_STREQ(address.GetNetwork(mask).GetAsString(true).getCString(), row.network);
        EXPECT_STREQ(address.GetBroadcast(mask).GetAsString(true).getCString(), row.broadcast);
        EXPECT_STREQ(address.GetPreferredGateway(mask, true).GetAsString(true).getCString(),
                     row.first);
        EXPECT_STREQ(address.GetPreferredGateway(mask, false).GetAsString(true).getCString(),
                     row.last);
    }
}

TEST(IPv4Address, NumbersAndTexts) {
    IPv4Address address(0xC0A8000Au, 5000);
    EXPECT_STREQ(address.GetAsString(true).getCString(), "192.168.0.10|5000");
    EXPECT_EQ(address.GetAsUInt32(), 0xC0A8000Au);
    EXPECT_TRUE(IPv4Address(0, 0, 0, 0, 80).IsNull() && !address.IsNull());
    address.SetByte(-1, 7);
    address.SetByte(4, 7);
    EXPECT_TRUE(address.SameAs(IPv4Address(192, 168, 0, 10), false));
    EXPECT_FALSE(address.SameAs(IPv4Address(192, 168, 0, 10), true));
    EXPECT_STREQ(IPv4Address::ToString(256 + 1, 2, 3, 4, -5).getCString(), "1.2.3.4|-5");
}

TEST(Address, ResolvesNumbersToTheirBestAddress) {
    using core::SocketDomain;
    using core::SocketType;
    auto const info = core::Address::GetInfo("127.0.0.1|3007", SocketType::stream, true);
    ASSERT_TRUE(info);
    EXPECT_FALSE(info->FindBest(SocketDomain::IPv6, SocketType::stream));
    auto const any =
        core::Address::GetInfo("127.0.0.1|3007", SocketDomain::IPv4, SocketType::unspecified, true);
    if (any->Next()) {  // a stream, a datagram, then others
        EXPECT_TRUE(any->FindBest(SocketDomain::IPv4, SocketType::stream)->Next()->Next());
        EXPECT_FALSE(any->FindBest(SocketDomain::IPv4, SocketType::datagram)->Next()->Next());
    }
    auto const best = info->FindBest(SocketDomain::IPv4, SocketType::stream);
    ASSERT_TRUE(best);
    EXPECT_STREQ(best->ClassName(), "AddressInfo");
    core::String name("untouched");
    EXPECT_EQ(core::SocketAddr().GetName(name, true), 13u);
    EXPECT_STREQ(name.getCString(), "untouched");
    EXPECT_TRUE(info->FindBest(SocketDomain::IPv4, SocketType::datagram)) << "for want of a better";
    EXPECT_EQ(core::GetPosixProtocol(SocketDomain::IPv6, SocketType::stream), 6);
    EXPECT_EQ(core::GetPosixProtocol(SocketDomain::IPv6, SocketType::datagram), 17);
    auto const address = best->GetSocketAddress();
    core::SocketAddr const negative(address->GetBytes(), -address->GetLength());
    EXPECT_STREQ(address->ClassName(), "InfoSocketAddr");
    EXPECT_STREQ(negative.ClassName(), "SocketAddr");
    EXPECT_EQ(negative.GetLength(), -address->GetLength());
    EXPECT_TRUE(negative.IsTheSameOf(*address) && address->IsTheSameOf(negative));
    EXPECT_FALSE(negative.IsTheSameOf(core::SocketAddr(address->GetBytes(), 8)));
    EXPECT_EQ(negative.GetDomain(), SocketDomain::IPv4);
    EXPECT_EQ(negative.GetName(name, true), 0u);
    EXPECT_STREQ(name.getCString(), "127.0.0.1|3007");
    char const tooLong[129] = {};
    for (int const length : {0, 129, -129, -2147483647 - 1}) {
        EXPECT_EQ(core::SocketAddr(tooLong, length).GetLength(), 0) << length;
    }
    EXPECT_EQ(core::SocketAddr(tooLong, -128).GetSize(), 128);
    EXPECT_EQ(core::SocketAddr(tooLong, 16).GetName(name, true), 5u) << "of no family";
}

}  // namespace
