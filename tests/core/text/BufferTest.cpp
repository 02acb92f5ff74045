#include <gtest/gtest.h>

#include <bit>
#include <climits>

#include "core/text/Buffer.h"
#include "core/text/MChar.h"
#include "core/text/cStrings.h"
#include "core/text/unicode.h"
#include "tests/core/text/join.h"

namespace {

using namespace core;

TEST(Buffer, OwnsItsBytes) {
    Buffer bytes("ab\0c", 4);
    bytes.Append(bytes);
    EXPECT_EQ(bytes, Buffer("ab\0cab\0c", 8));
    bytes.Set(bytes.GetData() + 1, 2);
    bytes.Append("x", INT_MIN);
    EXPECT_EQ(bytes, Buffer("b\0", 2));
    for (int size : {3, 1, -1}) {
        bytes.SetSize(size);
        EXPECT_EQ(bytes, Buffer("b\0\0", size));
    }
    EXPECT_EQ(bytes.GetData(), nullptr);
}

TEST(Buffer, ReceivesStringsInAnyWidth) {
    String const text("A\xE4z");
    unsigned short const units16[] = {'A', 0xE4, 'z', 0x141, 'b', 0x100, 'c', 0};
    EXPECT_EQ(text.GetRawBuffer(), Buffer("A\xE4z", 3));
    EXPECT_EQ(text.GetUnicode16Buffer(), Buffer(units16, 6));
    String back;
    back.SetString(units16);
    EXPECT_EQ(back, "A\xE4zAb") << "low 8 bits, up to a NUL";
    back.SetString(static_cast<unsigned int const*>(nullptr), 5);
    EXPECT_EQ(back, "");
}

TEST(CStrings, BoundedCopiesTruncateAndTerminate) {
    char target[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(String("abc").GetString(static_cast<char*>(nullptr), 9), 0);
    EXPECT_EQ(_strCopyLimited(target, 4, "abcdef"), 3);
    EXPECT_EQ(std::string_view(target, 6), std::string_view("abc\0##", 6));
    EXPECT_EQ(_strConcatLimited(target, 6, "xyz"), 2);
    EXPECT_STREQ(target, "abcxy");
    EXPECT_EQ(_strNCpy(target, "1234567", 6), target);
    EXPECT_STREQ(target, "12345");
    EXPECT_EQ(_strChr(target, '3'), target + 2);
    EXPECT_EQ(_strChr(target, '\0'), nullptr);

    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(_strConcatLimited(full, 3, "d"), 0);
    for (int size : {0, -1, INT_MIN}) {
        EXPECT_EQ(_strCopyLimited(full, size, "x"), 0);
        EXPECT_STREQ(full, "ab");
    }
}

TEST(Unicode, FoldsEveryCodePointAsUnicode15) {
    unsigned long long sum = 0;
    for (char32_t point = 1; point <= 0x10FFFF; point += point == 0xD7FF ? 0x801 : 1) {
        TextBuilder text;
        unicode::appendCodePoint(point, text);
        String const folded = unicode::foldCase(text.View());
        for (char const byte : folded.View()) {
            sum = sum * 31 + static_cast<unsigned char>(byte);
        }
    }
    EXPECT_EQ(sum, 0xD6D0DC25787E2438) << "checksum of the simple foldings in CaseFolding.txt";
}

TEST(MChar, PacksCharactersInMemoryOrderAndDumpsThemSafely) {
    MChar8 const magic("QXRB5129");
    EXPECT_EQ(std::string_view(magic.ptr(), 8), "QXRB5129");
    if constexpr (std::endian::native == std::endian::little) {
        EXPECT_TRUE(magic == 0x3932313542525851ull && magic == MChar8(0x3932313542525851ull));
    }
    MChar4 const shorter(String("AB"));
    EXPECT_EQ(std::string_view(shorter.ptr(), 4), std::string_view("AB\0\0", 4));
    EXPECT_EQ(join({shorter, shorter.SafeDump()}), "AB|AB??|");
    EXPECT_TRUE(MChar4("ABCDEF") == "ABCD" && MChar4("ABCDEF") == String("ABCDx"));
    EXPECT_FALSE(MChar4("ABCD") == "ABC" || MChar4("ABCD") == MChar4("ABCE"));
    EXPECT_TRUE(MChar4(static_cast<char const*>(nullptr)) == 0 && MChar4("") == 0 &&
                MChar4() == MChar4(0) && MChar8(String()) == MChar8());

    EXPECT_EQ(MChar4("\x1F\x20\x7F\x80").SafeDump(), "? \x7F?");
    MChar4 const tag("A\nB");
    EXPECT_EQ(join({String::FromMultiChar4(tag, true), String::FromMultiChar4(tag, false),
                    String::FromMultiChar8("12345678", true)}),
              "A?B?|A\nB|12345678|");
}

}  // namespace
