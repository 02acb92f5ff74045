#include <gtest/gtest.h>

#include "tests/core/text/join.h"

namespace {

using core::String;

sys::PathStyle const& posix = sys::posixPathStyle;
sys::PathStyle const& windows = sys::windowsPathStyle;

TEST(StringPath, SplitsPaths) {
    // A path, then its directory, name, name without extension, and extension.
    using Row = std::tuple<sys::PathStyle const&, char const*, char const*>;
    for (auto const& [style, text, expected] :
         {Row{posix, "/a/b.tar.gz", "/a|b.tar.gz|b.tar|.gz|"}, Row{posix, "/a", "/|a|a||"},
          Row{posix, "a", "|a|a||"}, Row{posix, "", "||||"}, Row{posix, "/", "/||||"},
          Row{posix, "a//b", "a|b|b||"}, Row{posix, "a/.profile", "a|.profile|.profile||"},
          Row{posix, "a/..", "a|..|..||"}, Row{posix, "a.b/c", "a.b|c|c||"},
          Row{posix, "a\\b.c", "|a\\b.c|a\\b|.c|"}, Row{posix, "a/b.", "a|b.|b|.|"},
          Row{windows, "C:\\a\\b.c", "C:\\a|b.c|b|.c|"}, Row{windows, "C:\\a", "C:\\|a|a||"},
          Row{windows, "C:a", "C:|a|a||"}, Row{windows, "a/b\\c", "a/b|c|c||"},
          Row{windows, "\\\\host\\share\\f", "\\\\host\\share|f|f||"}}) {
        String const path(text);
        EXPECT_EQ(join({path.GetFilePath(style), path.GetFileName(style),
                        path.GetFileNameWithoutExt(style), path.GetFileExt(style)}),
                  expected);
    }
}

TEST(StringPath, ReplacesExtensionsAndJoinsWithOneDelimiter) {
    EXPECT_EQ(join({String("/a.b/c.zip").ReplaceFileExt("txt", posix),
                    String("/a.b/c").ReplaceFileExt("x", posix)}),
              "/a.b/c.txt|/a.b/c.x|");
    EXPECT_EQ(
        join({String("a//").AppendNewPath("//b", posix), String("/").AppendNewPath("b", posix),
              String("").AppendNewPath("/b", posix), String("a\\").AppendNewPath("b", posix),
              String("a/").AppendNewPath("\\b", windows)}),
        "a/b|/b|/b|a\\/b|a\\b|");
    String self("a/");
    self.AppendPath(self, posix);
    EXPECT_EQ(self, "a/a/");
    EXPECT_EQ("a" / String("b"), String("a") + String::PathDelimiter() + "b");
}

TEST(StringPath, AddsRemovesAndFindsDelimiters) {
    EXPECT_EQ(join({String("a").ForceLeadingPathDelimiter(windows),
                    String("/a").ForceLeadingPathDelimiter(posix),
                    String("a").ForceTrailingPathDelimiter(posix), String::PathDelimiters(posix),
                    String("//a//").ForceNoLeadingPathDelimiter(posix),
                    String("//a//").ForceNoTrailingPathDelimiter(posix)}),
              "\\a|/a|a/|/|a//|//a|");
    EXPECT_EQ(join({String("a/b\\c").EnsurePlatformPathDelimiters(posix),
                    String("a/b\\c").EnsurePlatformPathDelimiters(windows)}),
              "a/b/c|a\\b\\c|");
    EXPECT_EQ(join({String("//a///b/").RemoveDuplicatedPathDelimiters(posix),
                    String("\\\\h\\\\/s").RemoveDuplicatedPathDelimiters(windows)}),
              "/a/b/|\\\\h\\s|");

    String const path("/a\\b/c");
    EXPECT_EQ(path.FindPathDelimiter(1, posix), 4);
    EXPECT_EQ(path.FindPathDelimiter(1, windows), 2);
    EXPECT_EQ(path.LastPathDelimiter(windows) + path.FindPathDelimiter(), 4);
    EXPECT_FALSE(path.IsPathDelimiter(2, posix) || path.IsPathDelimiter(6, posix));
    EXPECT_FALSE(path.HasTrailingPathDelimiter(posix) || String().HasTrailingPathDelimiter(posix));
}

}  // namespace
