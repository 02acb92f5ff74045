#include <gtest/gtest.h>

#include "core/text/String.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

TEST(String, ComparesSignedBytes) {
    EXPECT_LT(String("ab"), "abc");
    EXPECT_LT(String("\x80"), String("A"));
    EXPECT_GT(String("_"), "A");
    EXPECT_EQ(String("").Compare(nullptr), 0);
    EXPECT_EQ(String("abc").CompareIC("ABC"), 0);
    EXPECT_EQ(String("_").CompareIC("a"), 1) << "both sides count as upper case";
    EXPECT_EQ(String("\xE4").CompareIC("\xC4"), 1) << "only ASCII letters have two cases";
}

// The random test compares the rest with the standard library.
TEST(String, FindsTheEmptyPattern) {
    String const text("abc");
    for (int start : {INT_MIN, 0, 3}) {
        EXPECT_EQ(text.Find("", start), 3) << start;
        EXPECT_EQ(text.FindIC("", start), 3) << start;
        EXPECT_EQ(text.RFind("", start), start < 0 ? -1 : start);
        EXPECT_EQ(text.RFindIC("", start), start < 0 ? -1 : start);
    }
    EXPECT_EQ(text.Find("", 4), -1);
    EXPECT_EQ(text.Find('\0'), -1) << "the NUL behind the text is no part of it";
}

TEST(String, KnowsDelimiterSets) {
    String const text(";a,b;");
    String const set(",;");
    EXPECT_TRUE(text.IsDelimiter(set, 0) && text.IsDelimiter(set, 2));
    EXPECT_FALSE(text.IsDelimiter(set, 1) || text.IsDelimiter(set, 5) ||
                 text.IsDelimiter(set, INT_MIN) || text.IsDelimiter("", 0));
    EXPECT_EQ(text.FindNotDelimiter(set, -7), 1);
    EXPECT_EQ(text.LastNotDelimiter(set), 3);
    EXPECT_EQ(String(";;").LastNotDelimiter(set), -1);
    EXPECT_FALSE(String().HasTrailingDelimiter(set));
    EXPECT_EQ(String("a").ForceTrailingDelimiter(set, ','), "a,");
}

TEST(String, CutsPieces) {
    String const text("abcdef");
    EXPECT_EQ(text.Copy(-5, 2), "ab") << "a negative start shortens nothing";
    EXPECT_EQ(text.Copy(0, 2, 4, 9), "abef");
    EXPECT_EQ(text.CopyRange(1, 3, true), "bcd");
    EXPECT_EQ(text.CopyRange(-3, INT_MAX, true), text);
    EXPECT_EQ(text.CopyRange(3, 1), "");
    EXPECT_EQ(text.CopyRange(INT_MIN, INT_MIN, true), "");
    EXPECT_EQ(text.Left(-1), text);
    EXPECT_EQ(text.Right(2), "ef");
    EXPECT_EQ(text.Right(INT_MAX), text);

    String const pair("one=two=three");
    EXPECT_EQ(pair.LeftOf('='), "one");
    EXPECT_EQ(pair.RightOf("="), "two=three");
    EXPECT_EQ(pair.RightBy('='), "three");
    EXPECT_EQ(pair.RightOfIC("E=T"), "wo=three");
    EXPECT_EQ(pair.LeftOfIC('N'), "o");
    EXPECT_EQ(pair.LeftOf('!') + pair.RightOf('!') + pair.RightBy("!!"), "");
    EXPECT_EQ(pair.LeftOf('o'), "") << "nothing stands before it";

    EXPECT_EQ(String().FirstChar() + String().LastChar(), 0);
}

}  // namespace
