#include <gtest/gtest.h>

#include "core/text/String.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

TEST(String, ComparesSignedBytes) {
    struct Row {
        char const* left;
        char const* right;
        int exact;
        int ignoringCase;
    };
    for (Row const& row : {Row{"", "", 0, 0}, Row{"ab", "abc", -1, -1}, Row{"b", "abc", 1, 1},
                           Row{"abc", "ABC", 1, 0}, Row{"\x80", "A", -1, -1}, Row{"_", "A", 1, 1},
                           Row{"_", "a", -1, 1}, Row{"\xE4", "\xC4", 1, 1}, Row{"", "x", -1, -1}}) {
        String const left(row.left);
        String const right(row.right);
        EXPECT_EQ(left.Compare(right), row.exact) << row.left << " / " << row.right;
        EXPECT_EQ(left.Compare(row.right), row.exact);
        EXPECT_EQ(left.CompareIC(right), row.ignoringCase) << row.left << " / " << row.right;
        EXPECT_EQ(left < right, row.exact < 0);
        EXPECT_EQ(left == right, row.exact == 0);
    }
    EXPECT_EQ(String("").Compare(nullptr), 0);
}

TEST(String, FindsFromAnyPosition) {
    String const text("abcABCabc");
    struct Row {
        char const* pattern;
        int start;
        int find;
        int findIC;
        int rfind;
        int rfindIC;
    };
    for (Row const& row :
         {Row{"bc", 0, 1, 1, -1, -1}, Row{"bc", 2, 7, 4, 1, 1}, Row{"bc", 8, -1, -1, 7, 7},
          Row{"BC", INT_MAX, -1, -1, 4, 7}, Row{"BC", INT_MIN, 4, 1, -1, -1},
          Row{"", 0, 9, 9, 0, 0}, Row{"", 9, 9, 9, 9, 9}, Row{"", 10, -1, -1, 9, 9},
          Row{"", -1, 9, 9, -1, -1}, Row{"abcABCabcd", 0, -1, -1, -1, -1},
          Row{"c", 5, 8, 5, 2, 5}}) {
        String const pattern(row.pattern);
        SCOPED_TRACE(testing::Message() << row.pattern << " from " << row.start);
        EXPECT_EQ(text.Find(pattern, row.start), row.find);
        EXPECT_EQ(text.FindIC(pattern, row.start), row.findIC);
        EXPECT_EQ(text.RFind(pattern, row.start), row.rfind);
        EXPECT_EQ(text.RFindIC(pattern, row.start), row.rfindIC);
        if (pattern.GetLength() == 1) {
            EXPECT_EQ(text.Find(row.pattern[0], row.start), row.find);
            EXPECT_EQ(text.FindIC(row.pattern[0], row.start), row.findIC);
            EXPECT_EQ(text.RFind(row.pattern[0], row.start), row.rfind);
            EXPECT_EQ(text.RFindIC(row.pattern[0], row.start), row.rfindIC);
        }
    }
    EXPECT_EQ(text.Find('\0'), -1) << "the NUL behind the text is no part of it";
}

TEST(String, KnowsDelimiterSets) {
    String const text(";a,b;");
    String const set(",;");
    EXPECT_TRUE(text.IsDelimiter(set, 0) && text.IsDelimiter(set, 2));
    EXPECT_FALSE(text.IsDelimiter(set, 1) || text.IsDelimiter(set, 5) ||
                 text.IsDelimiter(set, INT_MIN) || text.IsDelimiter("", 0));
    EXPECT_EQ(text.FindNotDelimiter(set, -7), 1);
    EXPECT_EQ(text.LastDelimiter(set), 4);
    EXPECT_EQ(text.LastNotDelimiter(set), 3);
    EXPECT_EQ(String(";;").LastNotDelimiter(set), -1);
    EXPECT_FALSE(String().HasTrailingDelimiter(set));
    EXPECT_EQ(text.ForceTrailingDelimiter(set, ','), text);
    EXPECT_EQ(String("a").ForceTrailingDelimiter(set, ','), "a,");
}

TEST(String, CutsPieces) {
    String const text("abcdef");
    EXPECT_EQ(text.Copy(-5, 2), "ab") << "a negative start shortens nothing";
    EXPECT_EQ(text.Copy(4, INT_MAX), "ef");
    EXPECT_EQ(text.Copy(INT_MIN, INT_MIN), text);
    EXPECT_EQ(text.Copy(0, 2, 4, 9), "abef");
    EXPECT_EQ(text.CopyRange(1, 3), "bc");
    EXPECT_EQ(text.CopyRange(1, 3, true), "bcd");
    EXPECT_EQ(text.CopyRange(-3, INT_MAX, true), text);
    EXPECT_EQ(text.CopyRange(3, 1), "");
    EXPECT_EQ(text.CopyRange(INT_MIN, INT_MIN, true), "");
    EXPECT_EQ(text.Left(2), "ab");
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

    EXPECT_EQ(text.GetChar(6), '\0');
    EXPECT_EQ(text.GetChar(-1), '\0');
    EXPECT_EQ(String().FirstChar() + String().LastChar(), 0);
}

}  // namespace
