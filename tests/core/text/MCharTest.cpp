#include <gtest/gtest.h>

#include <bit>

#include "core/text/MChar.h"
#include "tests/support/PrintText.h"

namespace {

using core::MChar4;
using core::MChar8;
using core::String;

TEST(MChar, PacksTextInMemoryOrder) {
    MChar8 const magic("QXRB5129");
    EXPECT_EQ(std::string_view(magic.ptr(), 8), "QXRB5129");
    if constexpr (std::endian::native == std::endian::little) {
        EXPECT_TRUE(magic == MChar8(0x3932313542525851ull));
        EXPECT_TRUE(magic == 0x3932313542525851ull);
    }

    MChar4 const shorter(String("AB"));
    EXPECT_EQ(std::string_view(shorter.ptr(), 4), std::string_view("AB\0\0", 4));
    EXPECT_EQ(static_cast<String>(shorter), "AB");
    EXPECT_EQ(shorter.SafeDump(), "AB??");
    EXPECT_TRUE(MChar4("ABCDEF") == "ABCD" && MChar4("ABCDEF") == String("ABCDx"));
    EXPECT_FALSE(MChar4("ABCD") == "ABC" || MChar4("ABCD") == MChar4("ABCE"));
    EXPECT_TRUE(MChar4("") == 0 && MChar4() == MChar4(0) && MChar8(String()) == MChar8());
}

TEST(MChar, ShowsAnyByteSafely) {
    EXPECT_EQ(MChar4("\x1F\x20\x7F\x80").SafeDump(), "? \x7F?");
    EXPECT_EQ(String::FromMultiChar4(MChar4("A\nB"), true), "A?B?");
    EXPECT_EQ(String::FromMultiChar4(MChar4("A\nB"), false), "A\nB");
}

}  // namespace
