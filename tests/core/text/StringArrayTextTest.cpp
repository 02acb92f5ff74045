#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core/object/IStream.h"
#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;
using core::StringArray;

/// A stream in memory that gives and takes few bytes at a time, and may fail after some.
class ShortStream : public core::IStream {
public:
    explicit ShortStream(int most, std::string content = {}, int failAfter = INT_MAX)
        : content_(std::move(content)), most_(most), left_(failAfter) {}

    int Read(void* buffer, int count) override {
        if (left_ <= 0) {
            return -5;
        }
        int const got = std::min({count, most_, left_, static_cast<int>(content_.size()) - at_});
        content_.copy(static_cast<char*>(buffer), static_cast<std::size_t>(got),
                      static_cast<std::size_t>(at_));
        at_ += got;
        left_ -= got;
        return got;
    }

    int Write(void const* data, int count) override {
        int const taken = std::min({count, most_, left_});
        content_.append(static_cast<char const*>(data), static_cast<std::size_t>(taken));
        left_ -= taken;
        return taken;
    }

private:
    std::string content_;
    int most_;
    int left_;
    int at_ = 0;
};

String joined(StringArray const& list) {
    return list.AsString().ReplaceNewLine("|");
}

TEST(StringArrayText, LoadsLinesHoweverTheyEndAndArrive) {
    struct Row {
        std::string text;
        char const* expected;
    };
    for (Row const& row : {Row{"a\nb\n", "a|b|"}, Row{"a\r\nb", "a|b|"}, Row{"a\rb\r", "a|b|"},
                           Row{"\n\r\n\r", "|||"}, Row{"a\n\rb", "a||b|"}, Row{"", ""},
                           Row{"\r\r\n", "||"}, Row{std::string("a\0x\nb", 5), "a|b|"}}) {
        for (int most : {1, 2, 3, 4096}) {
            ShortStream stream(most, row.text);
            StringArray list;
            list.Add("goes away");
            EXPECT_TRUE(list.LoadFrom(&stream));
            EXPECT_EQ(joined(list), row.expected) << "in pieces of " << most;
        }
    }
    StringArray list;
    list.Add("x\ny");
    list.LoadFrom(list[0]);
    EXPECT_EQ(joined(list), "x|y|") << "an entry may be the text that is loaded";
}

TEST(StringArrayText, KeepsItsEntriesWhenAStreamFails) {
    StringArray list;
    list.Add("stays");
    ShortStream stream(2, "a=1\nb=2\n", 5);
    EXPECT_FALSE(list.LoadFrom(&stream));
    EXPECT_FALSE(list.LoadAsConfFileFrom(&stream));
    EXPECT_FALSE(list.LoadFrom(static_cast<core::IStream*>(nullptr)));
    EXPECT_EQ(joined(list), "stays|");
}

TEST(StringArrayText, SavesWhatItLoadsAgain) {
    StringArray list;
    String("a,,long enough for several writes").Split(list, ",");
    ShortStream stream(3);
    EXPECT_TRUE(list.SaveTo(&stream));
    StringArray again;
    EXPECT_TRUE(again.LoadFrom(&stream));
    EXPECT_EQ(again.AsString(), list.AsString());

    ShortStream full(3, "", 7);
    EXPECT_FALSE(list.SaveTo(&full));
}

TEST(StringArrayText, ReadsConfigurationFiles) {
    char const* const text =
        "# comment\n"
        "\n"
        "  ; comment = too\n"
        "\t name \t=  a value = with blanks \r\n"
        "plain line \n"
        "empty =\n"
        " = no name\n"
        "url=a#b;c\n";
    ShortStream stream(5, text);
    StringArray list;
    EXPECT_TRUE(list.LoadAsConfFileFrom(&stream));
    EXPECT_EQ(joined(list), "name=a value = with blanks|plain line|empty=|= no name|url=a#b;c|");
}

TEST(StringArrayText, KeepsCountedLists) {
    StringArray items;
    String("one,two").Split(items, ",");
    StringArray conf;
    conf.SetCountedList("%2", items);
    EXPECT_EQ(joined(conf), "%2.count=2|%2[0]=one|%2[1]=two|");
    conf.SetValueByName("lie.count", "2000000000");

    StringArray read;
    EXPECT_EQ(conf.GetCountedList("%2", read), 2);
    EXPECT_EQ(joined(read), "one|two|");
    EXPECT_EQ(conf.GetCountedList("lie", read), conf.Count());
}

}  // namespace
