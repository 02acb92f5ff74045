#include <gtest/gtest.h>

#include <vector>

#include "core/net/IPv6Address.h"
#include "tests/support/PrintText.h"

namespace {

using core::IPv6Address;

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
            EXPECT_FALSE(address.Set(bad)) << bad << ": " << error;
            EXPECT_TRUE(address.IsNull()) << bad;
            EXPECT_EQ(address.Port(), 7) << bad;
            EXPECT_FALSE(IPv6Address::IsValid(bad)) << bad;
        }
    }
}

}  // namespace
