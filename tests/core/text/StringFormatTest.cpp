#include <gtest/gtest.h>

#include <cerrno>

#include "core/text/message.h"
#include "tests/core/text/join.h"
#include "tests/support/system.h"

namespace {

using core::String;
using Align = String::Align;

TEST(StringFormat, FindsPlaceholders) {
    using Row = std::tuple<char const*, int, char const*, char const*>;
    for (auto const& [pattern, index, value, expected] :
         {Row{"%2 then %1", 0, "a", "%2 then a"}, Row{"%2 %1 %1 %2", -7, "a", "%2 a a %2"},
          Row{"%0 %1", 0, "a", "a %1"}, Row{"", 1, "x", ""}, Row{"%99999999", 99999999, "x", "x"},
          Row{"%100000000%1", 0, "x", "%100000000x"}}) {
        String const text(pattern);
        EXPECT_EQ(text.argi(index, value), expected) << pattern;
        EXPECT_EQ(text, pattern) << "the template is unchanged";
    }
    EXPECT_EQ(String::format("%1").argi(1, "%2").argi(2, "x"), "x")
        << "a later call searches the value";
    String text("%1 abc");
    EXPECT_EQ(std::move(text).argi(1, text.getCString() + 3), "abc abc");

    int position = 0;
    int length = 0;
    EXPECT_EQ(String("%12 %5 %3").findArgPlaceHolderByIndex(12, position, length), 12);
    EXPECT_EQ(position * 10 + length, 3);
    EXPECT_EQ(String("%12 %5 %3").findArgPlaceHolderByIndex(12, position, length, 1), 0);
    EXPECT_EQ(position * 10 + length, -10);

    EXPECT_EQ(String("%[Name]=%[name]!").argn("NAME", "x"), "x=x!");
    EXPECT_EQ(String("<%[n]>").argn("n", 255u, 4, 16), "<00FF>");
    EXPECT_EQ(String("%[n]").argn("n", reinterpret_cast<void*>(0xAB)), "0x000000AB");
}

TEST(StringFormat, ChoosesTheOverloadByTheValue) {
    enum Plain { Three = 3 };
    String const text("%1");
    EXPECT_EQ(join({text.argi(1, "literal"), text.argi(1, std::string("text").data()),
                    text.argi(1, LLONG_MIN), text.argi(1, ULLONG_MAX), text.argi(1, Three),
                    text.argi(1, 2.5f), text.argi(1, reinterpret_cast<void*>(0x12FF40)),
                    text.argi_choice(1, true, "on", "off")}),
              "literal|text|-9223372036854775808|18446744073709551615|3|2.5|0x0012FF40|on|");
}

TEST(StringFormat, PadsStrings) {
    String const text("ab");
    EXPECT_EQ(join({String("[%1]").argi(1, text, 6, Align::Center, '*'),
                    text.GetAligned(5, Align::Center, '*'), text.GetAligned(4, Align::Right),
                    text.GetAligned(4, static_cast<Align>(77), '\x80'),
                    text.GetAligned(INT_MIN, Align::Right)}),
              "[**ab**]|**ab*|  ab|ab  |ab|");
    EXPECT_EQ(text.GetAligned(INT_MAX, Align::Center).GetLength(), String::MaxWidth);
}

TEST(StringFormat, FormatsNumbers) {
    String const text("%1");
    EXPECT_EQ(
        join({text.argi(1, 7, 3), text.argi(1, -5, 3), text.argi(1, -5, 3, 10, Align::Default, '0'),
              text.argi(1, -5, 3, 10, Align::Center, '*'),
              text.argi(1, -5, 3, 10, Align::Default, '\t'),
              text.argi(1, -5, 3, 10, Align::Default, ' ')}),
        "  7| -5|-005|-*5*|-  5| -5|");
    EXPECT_EQ(join({text.argi(1, 255, 4, 16), text.argi(1, 255, 4, 16, Align::Default, ' '),
                    text.argi(1, -1, 0, 16), text.argi(1, 35, 0, 36), text.argi(1, 5, 6, 2)}),
              "00FF|  FF|FFFFFFFFFFFFFFFF|Z|000101|");
    EXPECT_EQ(join({text.argi(1, 1, 0, 1), text.argi(1, 1, 0, INT_MIN),
                    String("no placeholder").argi(1, 5u, 0, 99)}),
              "*ERR*|*ERR*|*ERR*|");

    EXPECT_EQ(text.argi(1, -1.5, 8, 'e', 1, Align::Left, '.'), "-1.5e+00");
    EXPECT_EQ(text.argi(1, -1.5, 7, 'f', 1, Align::Default, '0'), "000-1.5");
    EXPECT_EQ(text.argi(1, 1.25, 0, 'n', -1), "1.25") << "only number formats reach printf";
    String const longest = text.argi(1, -1.7976931348623157e308, 0, 'f', 5000000);
    EXPECT_EQ(longest.GetLength(), 1 + 309 + 1 + String::MaxPrecision);
}

TEST(StringFormat, FormatsErrorNumbers) {
    errno = ENOENT;
    EXPECT_TRUE(String::format("(%1)").argi_errno(1, true).StartsWith("(2: "));
    errno = 0;
    EXPECT_EQ(String("%1").argi_errno(1, true) + String("%[n]").argn_errno("n", false), "0: OK0");

    EXPECT_EQ(core::cLibraryErrorText(EACCES), "Permission denied");
    // On Windows, 13 is a different system error.
    String const system = core::errnoDescription(EACCES);
    EXPECT_EQ(system == core::cLibraryErrorText(EACCES), !support::onWindows());
    EXPECT_EQ(system.FindDelimiter("\r\n"), -1) << system.getCString();
    EXPECT_EQ(core::errnoDescription(-7), core::cLibraryErrorText(-7)) << "not a system error";
}

TEST(StringFormat, PrintsLikeTheCLibrary) {
    EXPECT_EQ(String::sprintf("%s-%03d", "a", 7), "a-007");
    EXPECT_EQ(String::sprintf("%*s", String::MaxLength + 5, "x").GetLength(), String::MaxLength);
}

TEST(StringFormat, FormatsByteSizes) {
    using Row = std::pair<long long, char const*>;
    for (auto const& [bytes, expected] :
         {Row{0, "0.0 B|0 B|"}, Row{100, "100.0 B|100 B|"}, Row{1536, "1536.0 B|1536 B|"},
          Row{1537, "1.5 KB|2 KB|"}, Row{1572864, "1536.0 KB|1536 KB|"},
          Row{1572865, "1.5 MB|2 MB|"}, Row{2000000, "1.9 MB|2 MB|"},
          Row{1610612737, "1.5 GB|2 GB|"}, Row{1649267441665, "1.5 TB|2 TB|"},
          Row{(1LL << 53) + 1, "8192.0 TB|8192 TB|"}, Row{LLONG_MAX, "8388608.0 TB|8388608 TB|"},
          Row{-5, "-5.0 B|-5 B|"},
          Row{LLONG_MIN, "-9223372036854775808.0 B|-9223372036854775808 B|"}}) {
        EXPECT_EQ(join({core::FormatByteSize(bytes, false), String::FormatByteSize(bytes, true)}),
                  expected);
    }
}

}  // namespace
