#include <gtest/gtest.h>

#include <climits>

#include "core/text/Buffer.h"
#include "core/text/String.h"
#include "core/text/strCopy.h"
#include "tests/support/PrintText.h"

namespace {

using core::Buffer;
using core::String;

TEST(Buffer, OwnsItsBytes) {
    Buffer bytes("ab\0c", 4);
    bytes.Append(bytes);
    EXPECT_EQ(bytes, Buffer("ab\0cab\0c", 8));
    bytes.Set(bytes.GetData() + 1, 2);
    EXPECT_EQ(bytes, Buffer("b\0", 2));
    bytes.Append("x", INT_MIN);
    EXPECT_EQ(bytes.GetSize(), 2);
    bytes.SetSize(3);
    EXPECT_EQ(bytes, Buffer("b\0\0", 3));
    bytes.SetSize(1);
    EXPECT_EQ(bytes, Buffer("b", 1));
    bytes.SetSize(-1);
    EXPECT_TRUE(bytes.IsEmpty());
    bytes.Set("x", 0);
    EXPECT_TRUE(bytes.IsEmpty());
    EXPECT_EQ(bytes.GetData(), nullptr);
}

TEST(Buffer, CarriesTextsInAnyWidth) {
    String const text("A\xE4z");
    unsigned short const units16[] = {'A', 0xE4, 'z'};
    unsigned int const units32[] = {'A', 0xE4, 'z'};
    EXPECT_EQ(text.GetRawBuffer(), Buffer("A\xE4z", 3));
    EXPECT_EQ(text.GetUnicode16Buffer(), Buffer(units16, sizeof units16));
    EXPECT_EQ(text.GetUnicode32Buffer(), Buffer(units32, sizeof units32));

    String back;
    back.SetString(units16, 3);
    EXPECT_EQ(back, text);
    unsigned short const narrowed[] = {0x141, 'b', 0x100, 'c', 0};
    back.SetString(narrowed);
    EXPECT_EQ(back, "Ab") << "only the low 8 bits count, and a NUL among them ends the text";
    back.SetString(static_cast<unsigned int const*>(nullptr), 5);
    EXPECT_EQ(back, "");
}

TEST(Buffer, TextsFitIntoRoomOfAnySize) {
    String const text("abc");
    char room[5] = "....";
    EXPECT_EQ(text.GetString(room, 3), 2);
    EXPECT_EQ(std::string_view(room, 5), std::string_view("ab\0.\0", 5));
    EXPECT_EQ(text.GetString(static_cast<char*>(nullptr), 9), 0);
    unsigned short wide[8];
    EXPECT_EQ(String("\xFF").GetString(wide, 8), 1);
    EXPECT_EQ(wide[0], 0xFF);
    EXPECT_EQ(String::FromLongChar(String::ToLongChar('\xE4') | 0xFF00), '\xE4');
}

TEST(Buffer, CStringsAlwaysEndWithNul) {
    char room[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(core::_strCopyLimited(room, 4, "abcdef"), 3);
    EXPECT_STREQ(room, "abc");
    EXPECT_EQ(room[4], '#');
    EXPECT_EQ(core::_strConcatLimited(room, 6, "xyz"), 2);
    EXPECT_STREQ(room, "abcxy");
    EXPECT_EQ(core::_strNCpy(room, "1234567", 6), room);
    EXPECT_STREQ(room, "12345");

    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(core::_strConcatLimited(full, 3, "d"), 0);
    EXPECT_STREQ(full, "ab");
    for (int size : {0, -1, INT_MIN}) {
        full[0] = '#';
        EXPECT_EQ(core::_strCopyLimited(full, size, "x"), 0);
        EXPECT_EQ(full[0], '#');
    }
    EXPECT_EQ(core::_strChr(room, '3'), room + 2);
    EXPECT_EQ(core::_strChr(room, '\0'), nullptr);
}

}  // namespace
