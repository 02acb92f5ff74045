#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "sys/FileDirectory.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "sys/matchesPattern.h"
#include "tests/support/AsNobody.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace file = sys::file;
namespace fs = std::filesystem;

TEST(Pattern, Matches) {
    struct Row {
        char const* pattern;
        char const* name;
        bool expected;
    };
    for (Row const& row : {
             Row{"*", "", true},           Row{"*", ".hidden", true},   Row{"", "", true},
             Row{"", "a", false},          Row{"?", "", false},         Row{"?", "a", true},
             Row{"?", "ab", false},        Row{"a*", "a", true},        Row{"a*c", "abcbc", true},
             Row{"a*c", "abcb", false},    Row{"*.rvl", "x.rvl", true}, Row{"*.rvl", ".rvl", true},
             Row{"*.rvl", "x.RVL", false}, Row{"**?**", "a", true},     Row{"**?**", "", false},
             Row{"*ab?d*", "aabcd", true}, Row{"[a]", "a", false},      Row{"\\*", "\\x", true},
             Row{"?", "\xff", true},       Row{"a\n?", "a\nb", true},
         }) {
        EXPECT_EQ(sys::matchesPattern(row.name, row.pattern), row.expected)
            << row.pattern << " on " << row.name;
    }
    std::string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += "*a";
    }
    EXPECT_FALSE(sys::matchesPattern(std::string(20'000, 'a') + "b", pattern)) << "within our time";
}

class FileSearchTest : public testing::Test {
protected:
    FileSearchTest() {
        for (char const* folder : {"B", "B/deep", "empty"}) {
            fs::create_directory(folder_.PathOf(folder));
        }
        for (char const* name :
             {"a.txt", "B/b.txt", "B/deep/c.txt", ".d.txt", "z", "\xc3\xa4.txt"}) {
            folder_.Write(name, name);
        }
        fs::create_directory_symlink("..", folder_.PathOf("B/up"));
        fs::create_symlink("nowhere", folder_.PathOf("dangling"));
    }

    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }
    /// The paths within the folder, in their order.
    core::String Found(char const* pattern, bool subFolders, bool folders) const {
        return Within(file::search(Path(pattern), subFolders, folders));
    }
    core::String Within(core::StringArray const& paths) const {
        core::String text;
        for (int i = 0; i < paths.Count(); ++i) {
            text += paths[i].Replace(Path(""), "") + " ";
        }
        return text;
    }

    support::TemporaryFolder folder_;
};

TEST_F(FileSearchTest, FindsInTheOrderOfNames) {
    EXPECT_EQ(Found("*.txt", false, false), ".d.txt a.txt \xc3\xa4.txt ");
    EXPECT_EQ(Found("*.txt", true, true), ".d.txt B/b.txt B/deep/c.txt a.txt \xc3\xa4.txt ");
    EXPECT_EQ(Found("?", false, false), "z ");
    EXPECT_EQ(Found("?", false, true), "B z ");
    EXPECT_EQ(Found("*", false, false), ".d.txt a.txt dangling z \xc3\xa4.txt ");
    EXPECT_EQ(Found("B/*", true, true), "B/b.txt B/deep B/deep/c.txt B/up ");
    EXPECT_EQ(Found("*e*p*", true, true), "B/deep empty ");
    for (char const* nothing : {"none*", "none/*", "a.txt/*", "B/", "empty/*", "*/b.txt"}) {
        EXPECT_EQ(Found(nothing, true, true), "") << nothing;
    }
    ASSERT_EQ(sys::dir::change(Path("B")), 0);
    EXPECT_EQ(Within(file::search("*", true, false)), "b.txt deep/c.txt ");
    EXPECT_EQ(file::search("", true, true).Count(), 0);
    EXPECT_EQ(file::search("/dev/nul?", false, false).AsString(), "/dev/null\r\n");
}

TEST_F(FileSearchTest, PassesOverWhatItMayNotRead) {
    fs::permissions(folder_.PathOf("B/deep"), fs::perms::none);
    support::AsNobody const nobody;
    EXPECT_EQ(Found("*.txt", true, false), ".d.txt B/b.txt a.txt \xc3\xa4.txt ");
    EXPECT_FALSE(file::isDirectory(Path("B/deep")));
    core::FileDirectory directory;
    EXPECT_EQ(directory.Open(Path("B/deep"), false), -EACCES);
}

TEST_F(FileSearchTest, ADirectoryKnowsItsEntries) {
    core::FileDirectory directory;
    EXPECT_EQ(directory.Refresh(), -EBADF);
    fs::resize_file(folder_.PathOf("z"), 5'000'000'000);
    ASSERT_EQ(directory.Open(folder_.Path().c_str(), false), 0);
    EXPECT_TRUE(directory.IsOpened());
    struct Row {
        char const* name;
        long long size;
    };
    int count = 0;
    for (Row const& row : {Row{".d.txt", 6}, Row{"B", 0}, Row{"a.txt", 5}, Row{"dangling", -ENOENT},
                           Row{"empty", 0}, Row{"z", 5'000'000'000}, Row{"\xc3\xa4.txt", 6}}) {
        EXPECT_EQ(directory.GetPath(count), Path(row.name));
        EXPECT_EQ(directory.GetSize(count), row.size) << row.name;
        ++count;
    }
    EXPECT_EQ(directory.Count(), count);
    for (int const outside : {-1, count, INT_MAX}) {
        EXPECT_EQ(directory.GetPath(outside), "");
        EXPECT_EQ(directory.GetSize(outside), -EINVAL);
    }
    folder_.Write("more", "");
    EXPECT_EQ(directory.Count(), count);
    EXPECT_EQ(directory.Refresh(), 0);
    EXPECT_EQ(directory.Count(), count + 1);
    EXPECT_EQ(directory.ScanDir(Path("B"), "*.txt"), 0);
    EXPECT_EQ(directory.GetPath(0), Path("B/b.txt"));
    EXPECT_EQ(directory.Count(), 1);

    ASSERT_EQ(directory.Open(Path("B"), true), 0);
    EXPECT_EQ(directory.Count(), 4);
    fs::remove_all(folder_.PathOf("B"));
    EXPECT_EQ(directory.Refresh(), -ENOENT);
    EXPECT_EQ(directory.Count(), 4) << "the list stays";
    EXPECT_EQ(directory.Open(Path("a.txt"), false), -ENOTDIR);
    EXPECT_FALSE(directory.IsOpened());
    EXPECT_EQ(directory.Count(), 0);
}

TEST_F(FileSearchTest, FollowsAVeryDeepTree) {
    core::String path = Path("empty");
    for (int level = 0; level < 1500; ++level) {
        path.AppendPath("d");
    }
    ASSERT_EQ(sys::dir::create(path, true), 0);
    ASSERT_EQ(file::setFileContents(path.AppendNewPath("bottom"), "x", true), 0);
    core::StringArray const found = file::search(Path("bottom"), true, false);
    ASSERT_EQ(found.Count(), 1);
    EXPECT_EQ(found[0], path.AppendNewPath("bottom"));
}

}  // namespace
