#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "sys/FileDirectory.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/posix/Unprivileged.h"
#include "tests/sys/ListedFolderTest.h"

namespace {

namespace file = sys::file;
namespace fs = std::filesystem;

class PosixSearchTest : public ListedFolderTest {
protected:
    PosixSearchTest() {
        fs::create_directories(directory_.PathOf("B/deep"));
        for (char const* name : {"a.txt", "B/b.txt", "B/deep/c.txt", ".d.txt", "\xc3\xa4"}) {
            directory_.Write(name, name);
        }
        fs::create_directory_symlink("..", directory_.PathOf("B/up"));
        fs::create_symlink("nowhere", directory_.PathOf("lost"));
        fs::resize_file(directory_.PathOf("a.txt"), 5'000'000'000);
    }
};

TEST_F(PosixSearchTest, FindsInTheOrderOfNames) {
    EXPECT_EQ(Found(Path("*"), false, false), ".d.txt a.txt lost \xc3\xa4 ");
    EXPECT_EQ(Found(Path("*.txt"), true, true), ".d.txt B/b.txt B/deep/c.txt a.txt ");
    EXPECT_EQ(Found(Path("?"), false, true), "B ");
    EXPECT_EQ(Found(Path("B/*"), true, true), "B/b.txt B/deep B/deep/c.txt B/up ");
    EXPECT_EQ(Found(Path("B/*"), false, false), "B/b.txt ");
    for (char const* nothing : {"none*", "none/*", "a.txt/*", "B/", "*/b.txt"}) {
        EXPECT_EQ(Found(Path(nothing), true, true), "") << nothing;
    }
    ASSERT_EQ(sys::dir::change(Path("B")), 0);
    EXPECT_EQ(Found("*.txt", true, false), "b.txt deep/c.txt ");
    chmod(Path("B/deep").getCString(), 0);
    support::Unprivileged const unprivileged;
    EXPECT_EQ(Found("*.txt", true, false), "b.txt ") << "passes over what it may not read";
}

TEST_F(PosixSearchTest, ADirectoryKnowsItsEntries) {
    core::FileDirectory directory;
    EXPECT_EQ(directory.Refresh(), -EBADF);
    ASSERT_EQ(directory.Open(Path(""), false), 0);
    using Row = std::pair<char const*, long long>;
    int count = 0;
    for (auto const& [name, size] : {Row{".d.txt", 6}, Row{"B", 0}, Row{"a.txt", 5'000'000'000},
                                     Row{"lost", -ENOENT}, Row{"\xc3\xa4", 2}}) {
        EXPECT_EQ(directory.GetSize(count), size) << name;
        EXPECT_EQ(directory.GetPath(count++), Path(name));
    }
    EXPECT_EQ(directory.Count(), count);
    EXPECT_EQ(directory.GetPath(count) + directory.GetPath(-1), "");
    EXPECT_EQ(directory.GetSize(count), -EINVAL);
    directory_.Write("more", "");
    EXPECT_EQ(directory.Refresh(), 0);
    EXPECT_EQ(directory.Count(), count + 1);
    EXPECT_EQ(directory.ScanDir(Path("B"), "*.txt"), 0);
    EXPECT_EQ(directory.GetPath(0), Path("B/b.txt"));
    EXPECT_EQ(directory.GetSize(0), 7);
    ASSERT_EQ(directory.Open(Path("B"), true), 0);
    fs::remove_all(directory_.PathOf("B"));
    EXPECT_EQ(directory.Refresh(), -ENOENT);
    EXPECT_EQ(directory.Count(), 4) << "the list stays";
    EXPECT_EQ(directory.Open(Path("a.txt"), false), -ENOTDIR);
    EXPECT_EQ(directory.Count() + directory.Refresh(), -EBADF);
    EXPECT_STREQ(directory.ClassName(), "FileDirectory");
}

}  // namespace
