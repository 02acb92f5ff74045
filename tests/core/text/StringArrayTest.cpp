#include <gtest/gtest.h>

#include "core/object/ClassRef.h"
#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;
using core::StringArray;

TEST(StringArray, GrowsByItsStepAndKeepsEntriesInPlace) {
    StringArray list(16);
    EXPECT_EQ(list.Capacity(), 0);
    EXPECT_EQ(list.Add("first"), 0);
    String const* const first = &list[0];
    for (int i = 1; i < 17; ++i) {
        EXPECT_EQ(list.Capacity(), 16);
        EXPECT_EQ(list.Add(String::format("%1").argi(1, i)), i);
    }
    EXPECT_EQ(list.Capacity(), 32);
    EXPECT_EQ(&list[0], first);
    EXPECT_EQ(list[16], "16");
    list.Clear();
    EXPECT_EQ(list.Count() + list.Capacity(), 0);

    StringArray wide(INT_MAX);
    wide.Add("x");
    EXPECT_EQ(wide.Capacity(), StringArray::MaxStep);
}

TEST(StringArray, CopiesDeeply) {
    StringArray list(2);
    list.SetSeparator(":");
    list.Add("a", "1");
    list.Add("b", "2");
    StringArray copy(list);
    copy[0] = "changed";
    EXPECT_EQ(list[0], "a:1");
    EXPECT_EQ(copy.GetValueByName("B"), "2") << "the separator is copied too";
    list.Add(list);
    EXPECT_EQ(list.AsString(), "a:1\r\nb:2\r\na:1\r\nb:2\r\n");
    copy = list;
    EXPECT_EQ(copy.Count(), 4);

    core::ClassRef<StringArray> const held(new StringArray(copy));
    EXPECT_STREQ(held->ClassName(), "StringArray");
    EXPECT_EQ(held->Count(), 4);
}

TEST(StringArray, DeletesAndFinds) {
    StringArray list;
    for (char const* text : {"abc", "", "ABC", "d"}) {
        list.Add(text);
    }
    EXPECT_EQ(list.IndexOf("Abc"), 0);
    EXPECT_EQ(list.IndexOf("Abc", 1), 2);
    EXPECT_EQ(list.IndexOf(""), -1) << "an empty entry is never found";
    list.Delete(-1);
    list.Delete(4);
    list.Delete(0);
    list.Delete(2);
    EXPECT_EQ(list.AsString(), "\r\nABC\r\n");
}

TEST(StringArray, HoldsPairs) {
    StringArray list(16);
    list.Add("Bad address", "Invalid port");
    list.Add("", "x");
    list.Add("a=b=c");
    list.Add("no pair");
    EXPECT_EQ(list.GetNameByIndex(0) + '|' + list.GetValueByIndex(0), "Bad address|Invalid port");
    EXPECT_EQ(list.GetNameByIndex(2) + '|' + list.GetValueByIndex(2), "a|b=c");
    for (int none : {1, 3, 4, INT_MIN}) {
        EXPECT_EQ(list.GetNameByIndex(none) + list.GetValueByIndex(none), "") << none;
    }
    EXPECT_EQ(list[0], "Bad address=Invalid port");
    EXPECT_EQ(list.IndexOfName(""), -1);

    EXPECT_EQ(list.SetValueByName("BAD ADDRESS", "new"), 0);
    EXPECT_EQ(list[0], "Bad address=new");
    list.SetNameByIndex(2, "n");
    EXPECT_EQ(list[2], "n=b=c");
    list.SetNameByIndex(3, "name");
    EXPECT_EQ(list[3], "name=");

    list.SetSeparator("::");
    list.Add("long", "separator");
    EXPECT_EQ(list.GetValueByName("long"), "separator");
}

TEST(StringArray, BecomesCStrings) {
    StringArray list;
    list.Add("a", "1");
    list.Add("b");
    core::StringPCharList const texts = list.AsPCharList();
    core::StringPCharList const values(list.AsPCharList(core::StringPCharList::Values));
    list[0].SetChar(0, 'X');
    list.Clear();
    ASSERT_EQ(texts.Count(), 2);
    EXPECT_STREQ(texts.GetList()[0], "a=1") << "the list owns what it points at";
    EXPECT_EQ(texts.GetList()[2], nullptr);
    EXPECT_STREQ(values.GetList()[0], "1");
}

}  // namespace
