#include <gtest/gtest.h>

#include <cctype>

#include "core/text/Buffer.h"
#include "tests/core/text/join.h"

namespace {

using core::String;

TEST(String, ComparesBytesAsSigned) {
    EXPECT_LT(String("\x80"), String("A"));
    EXPECT_GT(String("_"), "A");
    EXPECT_EQ(String("").Compare(nullptr), 0);
    EXPECT_EQ(String("_").CompareIC("a"), 1) << "both are converted to upper case";
    EXPECT_EQ(String("\xE4").CompareIC("\xC4"), 1) << "only ASCII letters have two cases";
}

// The seeds of the fuzzer compare the rest with std::string.
TEST(String, FindsTheEmptyPatternAtTheEnd) {
    String const text("abc");
    for (int start : {INT_MIN, 0, 3}) {
        EXPECT_EQ(text.Find("", start), 3) << start;
        EXPECT_EQ(text.FindIC("", start), 3) << start;
        EXPECT_EQ(text.RFind("", start), start < 0 ? -1 : start);
        EXPECT_EQ(text.RFindIC("", start), start < 0 ? -1 : start);
    }
    EXPECT_EQ(text.Find("", 4), -1);
    EXPECT_EQ(text.Find('\0'), -1) << "the terminating NUL is not a character";
}

TEST(String, RecognisesDelimiters) {
    String const text(";a,b;");
    String const set(",;");
    for (int index : {INT_MIN, 0, 1, 2, 5}) {
        EXPECT_EQ(text.IsDelimiter(set, index), index == 0 || index == 2) << index;
    }
    EXPECT_FALSE(text.IsDelimiter("", 0) || String().HasTrailingDelimiter(set));
    EXPECT_EQ(String("a").ForceTrailingDelimiter(set, ','), "a,");
}

TEST(String, ReturnsSubstrings) {
    String const text("abcdef");
    EXPECT_EQ(text.Copy(-5, 2), "ab") << "a negative start does not reduce the count";
    EXPECT_EQ(join({text.Copy(0, 2, 4, 9), text.CopyRange(1, 3, true), text.CopyRange(3, 1),
                    text.CopyRange(-3, INT_MAX, true), text.CopyRange(INT_MIN, INT_MIN, true)}),
              "abef|bcd||abcdef||");
    EXPECT_EQ(join({text.Left(-1), text.Right(2), text.Right(INT_MAX)}), "abcdef|ef|abcdef|");
    EXPECT_EQ(String().FirstChar() + String().LastChar() + text.LastChar(), 'f');
}

TEST(String, EditsItself) {
    String text("abc");
    text.Insert(text, 1);
    EXPECT_EQ(text, "aabcbc") << "a string can be inserted into itself";
    text.DeleteFromLeft(2);
    text.DeleteFromRight(1);
    text.SetChar(0, 'B');
    text.SetChar(3, 'd');
    EXPECT_EQ(text, "Bcb");
    text.SetChar(1, '\0');
    EXPECT_EQ(text, "B");
    text.DeleteFromRight(INT_MAX);
    EXPECT_TRUE(text.SameRef(String()));

    text.Append('c');
    text.Append('\0');
    text.Append(static_cast<char const*>(nullptr));
    text.Append(core::Buffer("d\0e", 3));
    text += text;
    EXPECT_EQ(text, "cdcd");
    text.Append(text.getCString() + 2);
    EXPECT_EQ(text, "cdcdcd");
    text.DeleteFromRight(-1);
    EXPECT_EQ(text, "") << "a negative count means all characters";
    String const one = String("1").AppendNew(core::Buffer("2", 1));
    EXPECT_EQ(("/" + ('0' + one + String("3") + '4' + "5")).nl(), "/012345\n");
}

TEST(String, ConvertsCaseAndTrims) {
    String const mixed("hELLO wORLD\t\xE4x_9z");
    String const borders("@AZ[`az{");
    EXPECT_EQ(borders.UpperCase() + borders.LowerCase(), "@AZ[`AZ{@az[`az{");
    EXPECT_EQ(mixed.CapitalCase(), "Hello World\t\xE4x_9z");
    String const spaced(" \t\r\n a b \v\n");
    EXPECT_EQ(join({spaced.TrimLeft(), spaced.TrimRight(), spaced.Trim()}),
              "a b \v\n| \t\r\n a b \v|a b \v|")
        << "a vertical tab is not white space";
}

TEST(String, ClassifiesCharacters) {
    for (int code = -128; code < 128; ++code) {
        auto const c = static_cast<char>(code);
        bool const nul = c == '\0';
        EXPECT_EQ(String::IsWhiteSpace(c), nul || String(" \t\r\n").Find(c) >= 0) << code;
        EXPECT_EQ(String::IsPuntuaction(c), nul || String(".,:;!?").Find(c) >= 0) << code;
        EXPECT_EQ(String::IsAlphanumeric(c), code > 0 && std::isalnum(code)) << code;
    }
}

TEST(String, Replaces) {
    EXPECT_EQ(join({String("xax").Replace("x", "xx"), String("abc").Replace("", "Z"),
                    String("").Replace("", "Z"), String("xAxa").ReplaceIC("a", "b")}),
              "xxaxx|abcZ||xbxb|");
    EXPECT_EQ(String("X\r\n2\n\n3\r").ReplaceNewLine("|"), "X|2||3|");
    EXPECT_EQ(String("1\r\n2").FilterNewLineChar('-'), "1--2");
    EXPECT_EQ(String("1\r\n2").FilterNewLineChar('\0'), "12");
}

TEST(String, SplitsAndExtractsTokens) {
    core::StringArray out(2);
    out.Add("before");
    EXPECT_EQ(String("a,,b,").Split(out, ","), 4);
    EXPECT_EQ(String("c d;e").Split(out, "; "), 7);
    EXPECT_EQ(String("h/").Split(out, '/'), 8);
    EXPECT_EQ(out[0].Split(out, 'f'), 10) << "an entry can be split into its own array";
    EXPECT_EQ(join(out), "before|a||b|c|d|e|h|be|ore|");

    String text("a, b;'c;d',e");
    EXPECT_EQ(join({text.ExtractNextToken(","), text.ExtractNextToken(';'),
                    text.ExtractNextToken(",;", "\"'"), text.ExtractNextToken(",;"), text}),
              "a| b|'c;d'|e||");
    text = "x=1&y=2&";
    EXPECT_EQ(join({text.ExtractLastToken('&'), text.ExtractLastToken("&"),
                    text.ExtractLastToken("&"), text.ExtractLastToken("&")}),
              "|y=2|x=1||");
    text = "'never closed,b";
    EXPECT_EQ(text.ExtractNextToken(",", "'"), "'never closed,b");
}

TEST(String, QuotesAndFindsProperties) {
    EXPECT_EQ(
        join({String("a b").Quote(), String("'a'b'").Unquote('\''), String("\"a'").Unquote()}),
        "\"a b\"|a'b|\"a'|");
    String const text("type=flat; size = \"3 4\", empty= ,Size='x;y' =lost last=\"open end");
    EXPECT_EQ(join({text.GetProperty("TYPE"), text.GetProperty("size"),
                    text.GetProperty("size", 20), text.GetProperty("last", -4)}),
              "flat|3 4|x;y|open end|");
    EXPECT_EQ(text.GetProperty("y"), "") << "a quoted value contains no properties";
    EXPECT_EQ(String("a='1'b=2").GetProperty("b"), "2");
}

}  // namespace
