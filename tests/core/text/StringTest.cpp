#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/text/Buffer.h"
#include "core/text/String.h"
#include "core/text/StringPool.h"
#include "core/text/TextBuilder.h"
#include "tests/support/PrintText.h"

namespace {

using namespace core;

TEST(String, CopiesUpToTheLengthOrTheNul) {
    EXPECT_EQ(String("abcdef", 3), "abc");
    EXPECT_EQ(String("ab", 10), "ab");
    for (String const& empty : {String(), String(nullptr, 5), String(""), String("abc", 0)}) {
        EXPECT_STREQ(empty.getCString(), "");
        EXPECT_TRUE(empty.SameRef(String())) << "an empty string has no record";
    }
    EXPECT_EQ(String(std::string_view("ab\0cd", 5)), "ab") << "a NUL ends the string";
    EXPECT_EQ(String::OfChar('-', -3), "");
    String text("old");
    text.SetBuffer("new", -1);
    EXPECT_EQ(text, "");
}

TEST(String, SharesItsRecordUntilChanged) {
    String const original("shared");
    String copy(original);
    copy += "";
    EXPECT_TRUE(copy.SameRef(original));
    copy.SetChar(0, 'S');
    EXPECT_EQ(copy, "Shared");

    String const text("/1\n2.3");
    sys::PathStyle const& posix = sys::posixPathStyle;
    for (String const& same :
         {text.UpperCase(), text.LowerCase(), text.CapitalCase(), text.ReplaceNewLine("\n"),
          text.FilterNewLineChar('\n'), text.EnsurePlatformPathDelimiters(posix),
          text.RemoveDuplicatedPathDelimiters(posix), text.AppendNew(""), String() + text,
          text.AppendNewPath("", posix), text.ReplaceFileExt("3", posix), text.Copy(0, 2, 2, 9),
          text.Copy(0, 9), text.Quote('\0'), text.Replace("2", "2")}) {
        EXPECT_TRUE(same.SameRef(text)) << "an equal result shares the record";
    }

    copy = original;
    copy.Unique();
    EXPECT_FALSE(copy.SameRef(original));
}

TEST(String, ResizesItsBuffer) {
    String text("ab");
    char* const buffer = text.GetBuffer(5);
    EXPECT_EQ(std::string_view(buffer, 6), std::string_view("ab\0\0\0\0", 6));
    std::memcpy(buffer, "12345", 5);
    EXPECT_EQ(text, "12345");
    text.SetLength(0);
    EXPECT_EQ(text.GetBuffer(), nullptr);
    EXPECT_EQ(text.GetBuffer(INT_MAX), nullptr) << "longer than the maximum";

    text.GetBuffer(4);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.Replace("", "x"), "") << "a buffer of NUL is an empty string";
}

TEST(String, TruncatesAtItsMaximumLength) {
    TextBuilder builder;
    builder.Append({"\0x", 2});
    EXPECT_TRUE(builder.AsString().SameRef(String())) << "a NUL ends the string";
    builder.Clear();
    builder.Append('x', INT_MAX);
    EXPECT_EQ(builder.View().size(), std::size_t{String::MaxLength});
    String text = builder.AsString();
    EXPECT_EQ(text.Replace("x", "yy").GetLength(), String::MaxLength);
    text.SetLength(INT_MAX);
    EXPECT_EQ(text.GetLength(), String::MaxLength);
    text.Insert("abc", 1);
    EXPECT_TRUE(text.StartsWith("xabcx") && text.GetLength() == String::MaxLength);
}

// Each test runs in its own process: no other string uses the pool.
TEST(StringPool, FreesItsChunksWithTheLastString) {
    StringPool& pool = StringPool::Instance();
    ASSERT_EQ(pool.ChunkCount(), 0);
    {
        std::vector<String> strings;
        for (int i = 0; i < StringPool::RecordsPerChunk; ++i) {
            strings.push_back(String::OfChar('x', i + 1));
        }
        EXPECT_EQ(pool.ChunkCount(), 1);
        String const another("one more than fits into a chunk");
        EXPECT_EQ(pool.ChunkCount(), 2);
        for (std::size_t i = 0; i < strings.size(); ++i) {
            EXPECT_STREQ(strings[i].getCString(), std::string(i + 1, 'x').c_str());
        }
        strings.clear();
        EXPECT_EQ(pool.ChunkCount(), 2) << "one string keeps all chunks";
    }
    EXPECT_EQ(pool.ChunkCount(), 0);
}

TEST(StringPool, ServesThreadsWithUnsharedStrings) {
    String const origin("handed over");
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        String own(origin);
        own.Unique();
        threads.emplace_back([i, text = std::move(own)]() mutable {
            for (int round = 0; round < 2000; ++round) {
                String const copy = String::format("%1 %2").argi(1, text).argi(2, i + round);
                ASSERT_TRUE(copy.StartsWith("handed over "));
                text = copy.Left(11);
            }
        });
    }
}

}  // namespace
