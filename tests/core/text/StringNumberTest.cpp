#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>

#include "core/text/String.h"
#include "core/text/cStrings.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

constexpr int untouched = 777;
constexpr long long defaultValue = -77;

// The seeds of the fuzzer compare decimals with the C library.
TEST(StringNumber, ParsesDecimals) {
    EXPECT_TRUE(String("2147483647").IsDecimal32() && core::strToInt(nullptr) == 0);
    EXPECT_FALSE(String("2147483648").IsDecimal32() || String("9223372036854775808").IsDecimal64());
    EXPECT_FALSE(String("1x").IsDecimal64() || String().IsDecimal32());
}

TEST(StringNumber, ParsesOtherBases) {
    int position = untouched;
    EXPECT_EQ(String("1fZ").ToHex32(&position, 9), 0x1Fu);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(String("FFFFFFFFFFFFFFFF").ToHex64(), ULLONG_MAX);
    EXPECT_EQ(String("-1").ToHex64(9), 9u);
    for (int base : {INT_MIN, -1, 0, 1, 37, INT_MAX}) {
        EXPECT_EQ(String("11").ToCustom(base, defaultValue), defaultValue) << base;
    }
    EXPECT_TRUE(String("0123456789abcdefABCDEF0123").IsHex());
    EXPECT_FALSE(String("0x1").IsHex() || String().IsHex());
}

TEST(StringNumber, ParsesIntegersOfAnyForm) {
    // A string, its number, and the position of the first character after that.
    using Row = std::tuple<char const*, long long, int>;
    for (auto const& [text, expected, errorPosition] :
         {Row{" 0x1F", 31, -1}, Row{"0X1f", defaultValue, untouched}, Row{"0b101", 5, -1},
          Row{"017", 17, -1}, Row{"017z", 15, 3}, Row{"MAX", LLONG_MAX, -1},
          Row{" min\n", LLONG_MIN, -1}, Row{"nan", defaultValue, untouched}, Row{"-12", -12, -1},
          Row{"12 ", defaultValue, untouched}, Row{"0x", defaultValue, untouched},
          Row{"0x 1", defaultValue, untouched}, Row{"0x-1", defaultValue, untouched},
          Row{"0b12", 1, 3}, Row{"x0x1", defaultValue, untouched}, Row{"", defaultValue, untouched},
          Row{"0xFFFFFFFFFFFFFFFF", LLONG_MAX, -1}, Row{"0x1G", 1, 3}}) {
        int position = untouched;
        EXPECT_EQ(String(text).ToInt64(&position, defaultValue), expected) << text;
        EXPECT_EQ(position, errorPosition) << text;
    }
    EXPECT_EQ(String("0xFFFFFFFF").ToInt32(), INT_MAX);
    EXPECT_TRUE(String("0x10").IsInt32() && String("min").IsInt64());
    EXPECT_FALSE(String("0xFFFFFFFF").IsInt32() || String("0x1G").IsInt64());
}

TEST(StringNumber, ParsesFloatingPoint) {
    errno = 5;
    EXPECT_EQ(String(" 1.5e1").ToFloat(), 15);
    EXPECT_EQ(String("-1e999").ToFloat(), -HUGE_VAL);
    EXPECT_EQ(errno, 5) << "errno is preserved";
    int position = untouched;
    EXPECT_EQ(String("1.5x").ToFloat(&position, -1), -1);
    EXPECT_EQ(position, 3);
    EXPECT_TRUE(String("-.5").IsFloat());
    EXPECT_FALSE(String("1.5 ").IsFloat() || String().IsFloat());
}

TEST(StringNumber, ParsesBooleans) {
    for (char const* text : {"1", "-1", "99999999999999999999", "TRUE", "Yes", "on"}) {
        EXPECT_TRUE(String(text).ToBool()) << text;
    }
    for (char const* text : {"0", "-0", "false", "NO", "off"}) {
        EXPECT_FALSE(String(text).ToBool(true)) << text;
    }
    for (char const* text : {"", "1a", "maybe", "yes "}) {
        EXPECT_TRUE(String(text).ToBool(true) && !String(text).ToBool()) << text;
    }
}

}  // namespace
