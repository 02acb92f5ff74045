#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "core/net/Address.h"
#include "core/net/EndPoint.h"
#include "core/net/InfoSocketAddr.h"
#include "core/net/InterfaceAddress.h"
#include "tests/support/PrintText.h"

namespace {

using namespace core;

TEST(IPv4Address, ParsesTexts) {
    // Invalid texts set the octets before the first error, and no port.
    std::tuple<bool, char const*, std::vector<char const*>> const rows[] = {
        {true, "192.168.0.10|5000", {"192.168.0.10|5000"}},
        {true, "10.0.0.1|80", {" 10.0.0.1 | 80 ", "010.00.0.1|080"}},
        {true, "10.0.0.1|70000", {"10.0.0.1|70000"}},
        {true, "10.0.0.1|-1", {"10.0.0.1|-1"}},
        {true, "10.0.0.1|2147483647", {"10.0.0.1|2147483648", "10.0.0.1|99999999999999999999"}},
        {true, "10.0.0.1|-2147483647", {"10.0.0.1|-2147483649", "10.0.0.1|-9999999999"}},
        {true, "10.0.0.1", {"10.0.0.1|", "10.0.0.1", "10.0.0.1|80x", "10.0.0.1|80|90"}},
        {true, "10.0.0.1", {"10.0.0.1|-2147483648"}},
        {true, "255.0.255.0", {"255.0.255.0"}},
        {false, "192.168.0.0", {"192.168.0.10:5000"}},
        {false, "0.0.0.0", {"|5000", "", "1.2.3", "1.2.3.4.5", "x.2.3.4", "256.2.3.4"}},
        {false, "1.2.0.0", {"1.2..3"}},
        {false,
         "1.2.3.0",
         {"1.2.3.256", "1.2.3.-4", "1.2.3.4294967296", "1.2.3.12ab", "1.2.3.0x4",
          "1.2.3.\xC2\xB2"}},
    };
    for (auto const& [valid, shown, texts] : rows) {
        for (char const* const text : texts) {
            IPv4Address address;
            EXPECT_EQ(address.Set(text), valid) << text;
            EXPECT_EQ(address.GetAsString(true), shown) << text;
        }
    }
    IPv4Address kept(9, 9, 9, 9, 99);
    EXPECT_FALSE(kept.Set("1.x.3.4|5"));
    EXPECT_EQ(kept.GetAsString(true), "1.9.9.9|99");
    EXPECT_FALSE(kept.Set("1|5"));
    EXPECT_EQ(kept.GetAsString(true), "0.0.0.0|99");
}

TEST(IPv4Address, IsValidIsMoreLenient) {
    for (char const* const good : {"1.2.3.4", " 1.2.3.4 ", "1.2.3.4.5", "255.255.255.255"}) {
        EXPECT_TRUE(IPv4Address::IsValid(good)) << good;
    }
    for (char const* const bad : {"", "1.2.3", "1.2..4", "1.2.3.4|5000", "1.2.3.256", "a.b.c.d"}) {
        EXPECT_FALSE(IPv4Address::IsValid(bad)) << bad;
    }
}

TEST(IPv4Address, ComputesNetworks) {
    // Rows: a mask; network, broadcast address, first and last gateway.
    using Row = std::pair<char const*, char const*>;
    IPv4Address const address("192.168.1.77|80");
    for (auto const& [text, expected] :
         {Row{"255.255.255.0", "192.168.1.0|192.168.1.255|192.168.1.1|192.168.1.254"},
          Row{"255.0.255.0", "192.168.1.0|192.168.1.255|192.168.1.1|192.168.1.254"},
          Row{"0.0.0.64", "192.168.1.64|192.168.1.127|192.168.1.65|192.168.1.126"},
          Row{"255.255.255.255", "192.168.1.77|192.168.1.77|192.168.1.78|192.168.1.76"},
          Row{"0.0.0.0", "0.0.0.0|255.255.255.255|0.0.0.1|255.255.255.254"}}) {
        IPv4Address const mask(text);
        EXPECT_EQ(address.GetNetwork(mask).GetAsString(true) + '|' +
                      address.GetBroadcast(mask).GetAsString(true) + '|' +
                      address.GetPreferredGateway(mask, true).GetAsString(true) + '|' +
                      address.GetPreferredGateway(mask, false).GetAsString(true),
                  expected);
    }
}

TEST(IPv4Address, ConvertsNumbersAndTexts) {
    IPv4Address address(0xC0A8000Au, 5000);
    EXPECT_EQ(address.GetAsString(true), "192.168.0.10|5000");
    EXPECT_EQ(address.GetAsUInt32(), 0xC0A8000Au);
    EXPECT_TRUE(IPv4Address(0, 0, 0, 0, 80).IsNull() && !address.IsNull());
    EXPECT_EQ(IPv4Address(address, 7).GetAsString(true), "192.168.0.10|7");
    address.SetByte(-1, 7);
    address.SetByte(4, 7);
    IPv4Address const other(192, 168, 0, 10);
    EXPECT_TRUE(address.SameAs(other, false) && !address.SameAs(other, true));
    EXPECT_EQ(IPv4Address::ToString(256 + 1, 2, 3, 4, -5), "1.2.3.4|-5");
    EXPECT_EQ(IPv4Address::ToString(1, 2, 3, 4), "1.2.3.4");
}

TEST(Address, SplitsAtTheFirstBar) {
    String host("h");
    String service("s");
    EXPECT_EQ(Address::DecomposeAddress("|5000", host, service), 11u);
    EXPECT_EQ(host + service, "hs") << "unchanged";
    EXPECT_EQ(Address::DecomposeAddress(" a| b|c", host, service), 0u);
    EXPECT_EQ(host + '+' + service, " a+ b|c");
}

TEST(Address, FindsTheBestMatch) {
    IPv4Address const four("127.0.0.1|3007");
    auto const any = four.GetAddressInfo(SocketDomain::IPv4, SocketType::unspecified, true);
    ASSERT_TRUE(any);
    if (any->Next()) {  // stream, datagram, others
        EXPECT_TRUE(any->FindBest(SocketDomain::IPv4, SocketType::stream)->Next()->Next());
        EXPECT_FALSE(any->FindBest(SocketDomain::IPv4, SocketType::datagram)->Next()->Next());
        EXPECT_EQ(any->Next()->Next()->GetRoot().Get(), any.Get());
    }
    auto const info = Address::GetInfo("127.0.0.1|3007", SocketType::stream, true);
    EXPECT_FALSE(info->FindBest(SocketDomain::IPv6, SocketType::stream));
    EXPECT_TRUE(info->FindBest(SocketDomain::IPv4, SocketType::datagram)) << "no better match";
    EXPECT_FALSE(Address::GetInfo("|", SocketType::stream, true));
    EXPECT_EQ(info->GetRoot().Get(), info.Get());
    EXPECT_STREQ(info->ClassName(), "AddressInfo");
    EXPECT_EQ(GetPosixProtocol(SocketDomain::IPv6, SocketType::stream), 6);
    EXPECT_EQ(GetPosixProtocol(SocketDomain::IPv6, SocketType::datagram), 17);
}

TEST(Address, CopiesPlatformAddresses) {
    String name("unchanged");
    EXPECT_TRUE(SocketAddr().GetName(name, true) == 13 && name == "unchanged");
    auto const address = IPv4Address("127.0.0.1|3007").GetAddressInfo(true)->GetSocketAddress();
    SocketAddr const negative(address->GetBytes(), -address->GetLength());
    EXPECT_STREQ(address->ClassName(), "InfoSocketAddr");
    EXPECT_STREQ(negative.ClassName(), "SocketAddr");
    EXPECT_EQ(negative.GetLength(), -address->GetLength());
    EXPECT_TRUE(negative.IsTheSameOf(*address) && address->IsTheSameOf(negative) &&
                !negative.IsTheSameOf(SocketAddr(address->GetBytes(), 8)));
    EXPECT_TRUE(negative.GetDomain() == SocketDomain::IPv4 && negative.GetName(name, true) == 0);
    EXPECT_EQ(name, "127.0.0.1|3007");
    char const tooLong[129] = {};
    for (int const length : {0, 129, -129, -2147483647 - 1}) {
        EXPECT_EQ(SocketAddr(tooLong, length).GetLength(), 0) << length;
    }
    EXPECT_EQ(SocketAddr(tooLong, 128).GetSize() + SocketAddr(tooLong, -128).GetSize(), 256);
    EXPECT_EQ(SocketAddr(tooLong, 16).GetName(name, true), 5u) << "unknown family";
}

TEST(IPv6Address, ParsesTextsAndWritesTheCanonicalForm) {
    using Row = std::pair<char const*, char const*>;
    for (auto const& [text, canonical] :
         {Row{"2001:DB8:0:0:8:800:200C:417A", "2001:db8::8:800:200c:417a"}, Row{"::", "::"},
          Row{"::1", "::1"}, Row{"1::", "1::"}, Row{" 1:2:3:4:5:6:7:8 | 80 ", "1:2:3:4:5:6:7:8|80"},
          Row{"::|70000", "::|70000"}, Row{"::|x", "::"}, Row{"0001:0:0:1:0:0:0:1", "1:0:0:1::1"},
          Row{"1:0:0:2:0:0:3:4", "1::2:0:0:3:4"}, Row{"1:2:3:4:5:6:0:8", "1:2:3:4:5:6:0:8"},
          Row{"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"}, Row{"::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
          Row{"::ffff:192.168.0.10", "::ffff:192.168.0.10"},
          Row{"::FFFF:C0A8:A|5000", "::ffff:192.168.0.10|5000"},
          Row{"64:ff9b::1.2.3.4", "64:ff9b::102:304"},
          Row{"1:2:3:4:5:6:1.2.3.4", "1:2:3:4:5:6:102:304"}}) {
        IPv6Address address;
        EXPECT_TRUE(address.Set(text)) << text;
        EXPECT_EQ(address.GetAsString(true), canonical);
    }
    std::pair<char const*, std::vector<char const*>> const invalid[] = {
        {"too few groups", {"", "|80", "1", "1:2:3:4:5:6:7", "1.2.3.4"}},
        {"too many groups",
         {"1:2:3:4:5:6:7:8:9", "1:2:3:4:5:6:7:8::", "::1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:1.2.3.4"}},
        {"colons without groups", {":", ":::", "1::2::3", ":1::", "1::2:"}},
        {"invalid groups",
         {"12345::", "g::", "-1::", "+1::", "0x1::", "1 ::", "::1%eth0", "::\xC3\xA4"}},
        {"invalid IPv4 part",
         {"::1.2.3", "::1.2.3.4.5", "::1.2.3.256", "::01.2.3.4", "::1.2.3.4:5",
          "1.2.3.4::", "::1.2.3."}},
    };
    for (auto const& [error, texts] : invalid) {
        for (char const* const bad : texts) {
            IPv6Address address("1::1|7");
            EXPECT_FALSE(address.Set(bad) || IPv6Address::IsValid(bad)) << bad << ": " << error;
            EXPECT_TRUE(address.IsNull() && address.Port() == 7) << bad;
        }
    }
}

TEST(EndPoint, IsCreatedFromTextsNumbersAndAddresses) {
    EndPoint const text("127.0.0.1|3007", SocketDomain::IPv4, SocketType::stream);
    EXPECT_STREQ(text.ClassName(), "EndPoint");
    EXPECT_EQ(text.GetAddress() + ' ' + text.GetService(), "127.0.0.1 3007");
    EXPECT_EQ(text.GetPort(), 3007);
    IPv4Address const four("127.0.0.1|3007");
    for (EndPoint const& same :
         {EndPoint("127.0.0.1", 3007, SocketDomain::IPv4, SocketType::stream),
          EndPoint("127.0.0.1", "3007", SocketDomain::unspecified, SocketType::stream),
          EndPoint(four.GetAddressInfo(true), SocketType::stream)}) {
        EXPECT_TRUE(same.SameAs(text) && same.GetDomain() == SocketDomain::IPv4);
        EXPECT_EQ(same.GetComposedAddress(), "127.0.0.1|3007");
    }
    EXPECT_FALSE(text.SameAs(EndPoint(IPv4Address(four, 1), SocketType::stream)));
    EXPECT_FALSE(text.SameAs(EndPoint(four, SocketType::datagram)));

    EndPoint six(IPv6Address("::1|80"), SocketType::datagram);
    EXPECT_EQ(six.GetDomain(), SocketDomain::IPv6);
    EXPECT_TRUE(IPv6Address("::1|80").SameAs(IPv6Address("0::1|80"), true) &&
                IPv6Address("::1|80").SameAs(IPv6Address("::1"), false) &&
                !IPv6Address("::1|80").SameAs(IPv6Address("::1"), true));
    EXPECT_TRUE(six.SameAs(EndPoint(Address::GetInfo("::1|80", true), six.GetType())));
    six.ResetAddress();
    EXPECT_TRUE(!six.GetSocketAddress() && six.GetPort() == 80 && !six.SameAs(EndPoint()));
    six.VoidFields();
    EXPECT_TRUE(six.SameAs(EndPoint()));
    EXPECT_EQ(EndPoint("h|7", {}, {}).GetService(), "7");
    EXPECT_EQ(EndPoint().GetPort(), noPort);
}

TEST(InterfaceAddress, FindsTheLoopback) {
    InterfaceAddress::List list;
    ASSERT_TRUE(InterfaceAddress::GetInterfacesList(list));
    int const at = list.FindAddress("127.0.0.1|99");
    ASSERT_GE(at, 0);
    EXPECT_STREQ(list.ClassName(), "List");
    EXPECT_STREQ(list[at].ClassName(), "InterfaceAddress");
    EXPECT_EQ(list.FindAddress(IPv4Address(127, 0, 0, 1), at), at);
    EXPECT_EQ(list[at].GetAddress() + ' ' + list[at].GetMask(), "127.0.0.1 255.0.0.0");
    int const last = list.Count() - 1;
    EXPECT_EQ(list.FindName(list[0].GetName(), -1), 0);
    EXPECT_EQ(list.FindName(list[last].GetName(), last), last);
    EXPECT_EQ(list.FindAddress("127.0.0.1", list.Count()) + list.FindAddress("nonsense") +
                  list.FindName("no such interface") + list.FindAddress(IPv6Address()),
              -4);
    ASSERT_TRUE(InterfaceAddress::GetInterfacesList(list, SocketDomain::IPv6));
    EXPECT_EQ(list.FindAddress("127.0.0.1"), -1);
}

}  // namespace
