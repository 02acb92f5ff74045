#include <gtest/gtest.h>

#include <cctype>

#include "core/text/Buffer.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;
using core::StringArray;

TEST(String, EditsItself) {
    String text("abc");
    text.Insert(text, 1);
    EXPECT_EQ(text, "aabcbc") << "a text can be put into itself";
    text.DeleteFromLeft(2);
    text.DeleteFromRight(1);
    text.SetChar(0, 'B');
    text.SetChar(3, 'd');
    EXPECT_EQ(text, "Bcb");
    text.SetChar(1, '\0');
    EXPECT_EQ(text, "B");
    text.DeleteFromRight(INT_MAX);
    EXPECT_TRUE(text.SameRef(String()));
}

TEST(String, Appends) {
    String text;
    text.Append("ab");
    text.Append('c');
    text.Append('\0');
    text.Append(static_cast<char const*>(nullptr));
    text.Append(core::Buffer("d\0e", 3));
    text += text;
    EXPECT_EQ(text, "abcdabcd");
    text.Append(text.getCString() + 6);
    EXPECT_EQ(text, "abcdabcdcd");
    EXPECT_EQ(String("1").AppendNew("2") + String("3") + '4' + "5", "12345");
    EXPECT_EQ('a' + String("b").nl(), "ab\n");
}

TEST(String, ChangesCase) {
    String const text("hELLO wORLD\t\xE4x_9z");
    EXPECT_EQ(text.UpperCase(), "HELLO WORLD\t\xE4X_9Z");
    EXPECT_EQ(text.CapitalCase(), "Hello World\t\xE4x_9z");
}

TEST(String, ClassifiesCharacters) {
    for (int code = -128; code < 128; ++code) {
        auto const c = static_cast<char>(code);
        bool const nul = c == '\0';
        EXPECT_EQ(String::IsWhiteSpace(c), nul || String(" \t\r\n").Find(c) >= 0) << code;
        EXPECT_EQ(String::IsPuntuaction(c), nul || String(".,:;!?").Find(c) >= 0) << code;
        EXPECT_EQ(String::IsAlphanumeric(c), code > 0 && code < 128 && std::isalnum(code)) << code;
    }
}

TEST(String, Trims) {
    String const text(" \t\r\n a b \v\n");
    EXPECT_EQ(text.TrimLeft(), "a b \v\n");
    EXPECT_EQ(text.TrimRight(), " \t\r\n a b \v") << "a vertical tab is no white space";
    EXPECT_EQ(text.Trim(), "a b \v");
}

TEST(String, Replaces) {
    EXPECT_EQ(String("xax").Replace("x", "xx"), "xxaxx");
    EXPECT_EQ(String("abc").Replace("", "Z"), "abcZ");
    EXPECT_EQ(String("").Replace("", "Z"), "");
    EXPECT_EQ(String("xAxa").ReplaceIC("a", "b"), "xbxb");
    EXPECT_EQ(String("1\r\n2\n\n3\r").ReplaceNewLine("|"), "1|2||3|");
    EXPECT_EQ(String("1\r\n2").FilterNewLineChar('-'), "1--2");
    EXPECT_EQ(String("1\r\n2").FilterNewLineChar('\0'), "12");
}

TEST(String, Splits) {
    StringArray out(2);
    out.Add("before");
    EXPECT_EQ(String("a,,b,").Split(out, ","), 4);
    EXPECT_EQ(String("c d;e").Split(out, "; "), 7);
    EXPECT_EQ(String("h/").Split(out, '/'), 8);
    EXPECT_EQ(out[0].Split(out, 'f'), 10) << "an entry can be split into its own list";
    EXPECT_EQ(out.AsString().ReplaceNewLine("|"), "before|a||b|c|d|e|h|be|ore|");
}

TEST(String, ExtractsTokens) {
    String text("a, b;'c;d',e");
    EXPECT_EQ(text.ExtractNextToken(","), "a");
    EXPECT_EQ(text.ExtractNextToken(';'), " b");
    EXPECT_EQ(text.ExtractNextToken(",;", "\"'"), "'c;d'");
    EXPECT_EQ(text.ExtractNextToken(",;"), "e");
    EXPECT_EQ(text.ExtractNextToken(",;"), "");

    text = "x=1&y=2&";
    EXPECT_EQ(text.ExtractLastToken('&'), "");
    EXPECT_EQ(text.ExtractLastToken("&"), "y=2");
    EXPECT_EQ(text.ExtractLastToken("&"), "x=1");

    text = "'never closed,b";
    EXPECT_EQ(text.ExtractNextToken(",", "'"), "'never closed,b");
}

TEST(String, QuotesAndReadsProperties) {
    EXPECT_EQ(String("a b").Quote(), "\"a b\"");
    EXPECT_EQ(String("'a'b'").Unquote('\''), "a'b");
    EXPECT_EQ(String("\"a'").Unquote(), "\"a'");

    String const text("type=flat; size = \"3 4\", empty= ,Size='x;y' =lost last=\"open end");
    EXPECT_EQ(text.GetProperty("TYPE"), "flat");
    EXPECT_EQ(text.GetProperty("size"), "3 4");
    EXPECT_EQ(text.GetProperty("size", 20), "x;y");
    EXPECT_EQ(text.GetProperty("y"), "") << "within quotes there are no properties";
    EXPECT_EQ(text.GetProperty("last", -4), "open end");
}

}  // namespace
