#include <gtest/gtest.h>

#include "core/object/IStream.h"
#include "core/text/StringArray.h"
#include "tests/core/text/join.h"

namespace {

using namespace core;

TEST(StringArray, GrowsByItsStepWithoutMovingEntries) {
    StringArray list(2);
    EXPECT_EQ(list.Capacity(), 0);
    list.Add("first");
    String const* const first = &list[0];
    for (int i = 1; i < 6; ++i) {
        EXPECT_EQ(list.Capacity(), (i + 1) / 2 * 2);
        EXPECT_EQ(list.Add("next"), i);
    }
    EXPECT_EQ(&list[0], first);
    list.Clear();
    EXPECT_EQ(list.Count() + list.Capacity(), 0);

    for (auto const& [step, capacity] : {std::pair{INT_MAX, 0x10000}, std::pair{0, 1}}) {
        StringArray clamped(step);
        clamped.Add("x");
        EXPECT_EQ(clamped.Capacity(), capacity);
    }
}

TEST(StringArray, CopiesDeeply) {
    StringArray list(2);
    list.Add("a", "1");
    list.Add("b", "2");
    StringArray copy(list);
    copy[0] = "changed";
    EXPECT_EQ(join(copy), "changed|b=2|");
    list.Add(list);
    EXPECT_EQ(list.AsString(), "a=1\r\nb=2\r\na=1\r\nb=2\r\n");
    copy = list;
    EXPECT_EQ(copy.Count(), 4);
    EXPECT_STREQ(copy.ClassName(), "StringArray");
}

TEST(StringArray, DeletesAndFinds) {
    StringArray list;
    String("abc,,ABC,d").Split(list, ",");
    EXPECT_EQ(list.IndexOf("Abc"), 0);
    EXPECT_EQ(list.IndexOf("Abc", 1), 2);
    EXPECT_EQ(list.IndexOf("d", INT_MIN) + list.Capacity(), 19);
    EXPECT_EQ(list.IndexOf(""), -1) << "an empty entry is never found";
    for (int index : {-1, 4, 0, 2}) {
        list.Delete(index);
    }
    EXPECT_EQ(join(list), "|ABC|");
}

TEST(StringArray, SplitsPairsAtTheFirstSeparator) {
    StringArray list(16);
    list.Add("Bad address", "Invalid port");
    EXPECT_EQ(list.Add("", "x"), 1);
    list.Add("a=b=c");
    list.Add("no pair");
    String pairs;
    for (int i : {0, 1, 2, 3, 4, INT_MIN}) {
        pairs += list.GetNameByIndex(i) + '/' + list.GetValueByIndex(i) + '|';
    }
    EXPECT_EQ(pairs, "Bad address/Invalid port|/|a/b=c|/|/|/|");
    EXPECT_EQ(list.IndexOfName(""), -1);

    EXPECT_EQ(list.SetValueByName("BAD ADDRESS", "new"), 0);
    list.SetNameByIndex(2, "n");
    list.SetNameByIndex(3, "name");
    EXPECT_EQ(join(list), "Bad address=new|=x|n=b=c|name=|");
    EXPECT_EQ(list.IndexOfName("N", 2) * 10 + list.IndexOfName("N", 3), 19);
    EXPECT_EQ(list.GetValueByName("NAME") + list.GetValueByName("n"), "b=c");
}

TEST(StringArray, ConvertsToCStrings) {
    StringArray list;
    list.Add("a", "1");
    list.Add("b");
    StringPCharList const strings = list.AsPCharList();
    StringPCharList const values(list.AsPCharList(StringPCharList::Values));
    list[0].SetChar(0, 'X');
    list.Clear();
    ASSERT_EQ(strings.Count(), 2);
    EXPECT_STREQ(strings.GetList()[0], "a=1") << "the list owns its strings";
    EXPECT_EQ(strings.GetList()[2], nullptr);
    EXPECT_STREQ(values.GetList()[0], "1");
    list.Add("name", "");
    EXPECT_STREQ(list.AsPCharList(StringPCharList::Names).GetList()[0], "name");
}

// The seeds of the fuzzer compare streams with strings.
TEST(StringArrayText, LoadsLinesWithAnyLineEnd) {
    StringArray list;
    using Row = std::pair<char const*, char const*>;
    for (auto const& [text, expected] :
         {Row{"a\nb\n", "a|b|"}, Row{"a\r\nb", "a|b|"}, Row{"a\rb\r", "a|b|"},
          Row{"\n\r\n\r", "|||"}, Row{"a\n\rb", "a||b|"}, Row{"", ""}, Row{"\r\r\n", "||"}}) {
        list.LoadFrom(text);
        EXPECT_EQ(join(list), expected);
    }
    list.Add("x\ny");
    list.LoadFrom(list[2]);
    EXPECT_EQ(join(list), "x|y|") << "an entry can be loaded into its own array";
    auto* const none = static_cast<IStream*>(nullptr);
    EXPECT_FALSE(list.LoadFrom(none) || list.LoadAsConfFileFrom(none) || list.SaveTo(none));
}

TEST(StringArrayText, LoadsConfigurationFiles) {
    StringArray list;
    list.LoadAsConfFileFrom(
        "# comment\n\n  ; comment = too\n\t name \t=  a value = with blanks \r\n"
        "plain line \nempty =\n = no name\nurl=a#b;c\n");
    EXPECT_EQ(join(list), "name=a value = with blanks|plain line|empty=|= no name|url=a#b;c|");
}

}  // namespace
