#include <gtest/gtest.h>

#include "core/text/String.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

sys::PathStyle const& posix = sys::posixPathStyle;
sys::PathStyle const& windows = sys::windowsPathStyle;

TEST(StringPath, TakesPathsApart) {
    struct Row {
        sys::PathStyle const& style;
        char const* path;
        char const* folder;
        char const* name;
        char const* ext;
    };
    for (Row const& row :
         {Row{posix, "/a/b.tar.gz", "/a", "b.tar.gz", ".gz"}, Row{posix, "/a", "/", "a", ""},
          Row{posix, "a", "", "a", ""}, Row{posix, "", "", "", ""}, Row{posix, "/", "/", "", ""},
          Row{posix, "a//b", "a", "b", ""}, Row{posix, "a/.profile", "a", ".profile", ""},
          Row{posix, "a/..", "a", "..", ""}, Row{posix, "a.b/c", "a.b", "c", ""},
          Row{posix, "a\\b.c", "", "a\\b.c", ".c"}, Row{posix, "a/b.", "a", "b.", "."},
          Row{windows, "C:\\a\\b.c", "C:\\a", "b.c", ".c"}, Row{windows, "C:\\a", "C:\\", "a", ""},
          Row{windows, "C:a", "C:", "a", ""}, Row{windows, "a/b\\c", "a/b", "c", ""},
          Row{windows, "\\\\host\\share\\f", "\\\\host\\share", "f", ""}}) {
        String const path(row.path);
        EXPECT_EQ(path.GetFilePath(row.style), row.folder) << row.path;
        EXPECT_EQ(path.GetFileName(row.style), row.name) << row.path;
        EXPECT_EQ(path.GetFileExt(row.style), row.ext) << row.path;
        EXPECT_EQ(path.GetFileNameWithoutExt(row.style) + row.ext, row.name) << row.path;
    }
}

TEST(StringPath, ReplacesExtensions) {
    String const path("/a.b/c.zip");
    EXPECT_EQ(path.ReplaceFileExt("txt", posix), "/a.b/c.txt");
    EXPECT_EQ(String("/a.b/c").ReplaceFileExt("x", posix), "/a.b/c.x");
}

TEST(StringPath, JoinsWithOneDelimiter) {
    EXPECT_EQ(String("a//").AppendNewPath("//b", posix), "a/b");
    EXPECT_EQ(String("/").AppendNewPath("b", posix), "/b");
    EXPECT_EQ(String("").AppendNewPath("/b", posix), "/b");
    EXPECT_EQ(String("a\\").AppendNewPath("b", posix), "a\\/b");
    EXPECT_EQ(String("a/").AppendNewPath("\\b", windows), "a\\b");
    String self("a/");
    self.AppendPath(self, posix);
    EXPECT_EQ(self, "a/a/");
    EXPECT_EQ("a" / String("b"), String("a") + String::PathDelimiter() + "b");
}

TEST(StringPath, ForcesDelimiters) {
    EXPECT_EQ(String("a").ForceLeadingPathDelimiter(windows), "\\a");
    EXPECT_EQ(String("//a//").ForceNoLeadingPathDelimiter(posix), "a//");
    EXPECT_EQ(String("//a//").ForceNoTrailingPathDelimiter(posix), "//a");
    EXPECT_EQ(String("a/b\\c").EnsurePlatformPathDelimiters(posix), "a/b/c");
    EXPECT_EQ(String("a/b\\c").EnsurePlatformPathDelimiters(windows), "a\\b\\c");
    EXPECT_EQ(String("//a///b/").RemoveDuplicatedPathDelimiters(posix), "/a/b/");
    EXPECT_EQ(String("\\\\h\\\\/s").RemoveDuplicatedPathDelimiters(windows), "\\\\h\\s");
}

TEST(StringPath, FindsDelimiters) {
    String const path("/a\\b/c");
    EXPECT_EQ(path.FindPathDelimiter(1, posix), 4);
    EXPECT_EQ(path.FindPathDelimiter(1, windows), 2);
    EXPECT_FALSE(path.IsPathDelimiter(2, posix) || path.IsPathDelimiter(6, posix));
    EXPECT_FALSE(path.HasTrailingPathDelimiter(posix) || String().HasTrailingPathDelimiter(posix));
}

}  // namespace
