#include <gtest/gtest.h>

#include <climits>

#include "core/text/strCopy.h"

namespace {

TEST(CStrings, AlwaysEndWithNul) {
    char room[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(core::_strCopyLimited(room, 4, "abcdef"), 3);
    EXPECT_STREQ(room, "abc");
    EXPECT_EQ(room[4], '#');
    EXPECT_EQ(core::_strConcatLimited(room, 6, "xyz"), 2);
    EXPECT_STREQ(room, "abcxy");
    EXPECT_EQ(core::_strConcatLimited(room, 6, "z"), 0);
    EXPECT_EQ(core::_strNCpy(room, "1234567", 6), room);
    EXPECT_STREQ(room, "12345");

    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(core::_strConcatLimited(full, 3, "d"), 0);
    EXPECT_STREQ(full, "ab");
    EXPECT_EQ(core::_strCopyLimited(full, 3, nullptr), 0);
    EXPECT_STREQ(full, "");
    for (int size : {0, -1, INT_MIN}) {
        full[0] = '#';
        EXPECT_EQ(core::_strCopyLimited(full, size, "x"), 0);
        EXPECT_EQ(core::_strConcatLimited(full, size, "x"), 0);
        EXPECT_EQ(full[0], '#');
    }
    EXPECT_EQ(core::_strNCpy(nullptr, "x", 5), nullptr);
}

TEST(CStrings, FindCharacters) {
    char const* const text = "a=b=";
    EXPECT_EQ(core::_strChr(text, '='), text + 1);
    EXPECT_EQ(core::_strChr(text, 'x'), nullptr);
    EXPECT_EQ(core::_strChr(text, '\0'), nullptr);
    EXPECT_EQ(core::_strChr(nullptr, 'x'), nullptr);
}

}  // namespace
