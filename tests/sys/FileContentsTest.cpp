#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <filesystem>

#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace file = sys::file;

class FileContentsTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }

    support::TemporaryFolder folder_;
};

TEST_F(FileContentsTest, WrittenAndReadAgain) {
    EXPECT_EQ(file::getFileContents(Path("f")), "");
    EXPECT_EQ(file::setFileContents(Path("f"), "long text", true), 0);
    EXPECT_EQ(file::setFileContents(Path("f"), "LONG", false), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "LONG text");
    EXPECT_EQ(file::setFileContents(Path("f"), "short", true), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "short");
    EXPECT_EQ(file::addFileContents(Path("f"), "er"), 0);
    EXPECT_EQ(file::addFileContents(Path("f"), ""), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "shorter");
    EXPECT_EQ(file::addFileContents(Path("new"), "%1"), 0);
    EXPECT_EQ(file::getFileContents(Path("new")), "%1");
    std::string const big(10'000, 'b');
    EXPECT_EQ(file::setFileContents(Path("f"), big.c_str(), true), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), big.c_str());
    folder_.Write("nul", "ab" + std::string(5000, '\0') + "behind");
    EXPECT_EQ(file::getFileContents(Path("nul")), "ab");
    EXPECT_EQ(file::remove(Path("f")), 0);
    EXPECT_EQ(file::remove(Path("f")), -ENOENT);
}

TEST_F(FileContentsTest, EveryFailureHasItsCode) {
    ASSERT_EQ(mkfifo(folder_.PathOf("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("loop", folder_.PathOf("loop"));
    core::StringArray list;
    list.Add("stays");
    struct Row {
        core::String path;
        int reading;
        int writing;
    };
    for (Row const& row : {Row{Path("no/f"), -ENOENT, -ENOENT}, Row{Path("."), -EISDIR, -EISDIR},
                           Row{Path("loop"), -ELOOP, -ELOOP}, Row{Path("pipe"), -ENOTSUP, -ENXIO},
                           Row{"/dev/full", -ENOTSUP, -ENOSPC}, Row{"", -ENOENT, -ENOENT}}) {
        EXPECT_EQ(file::setFileContents(row.path, "x", true), row.writing) << row.path.getCString();
        EXPECT_EQ(file::setFileContents(row.path, "x", false), row.writing);
        EXPECT_EQ(file::addFileContents(row.path, "x"), row.writing);
        EXPECT_EQ(file::saveTextFile(list, row.path), row.writing);
        EXPECT_EQ(file::saveConfFile(list, row.path), row.writing);
        EXPECT_EQ(file::loadTextFile(list, row.path), row.reading);
        EXPECT_EQ(file::loadConfFile(list, row.path), row.reading);
        EXPECT_EQ(file::getFileContents(row.path), "");
        EXPECT_EQ(list.AsString(), "stays\r\n");
    }
    folder_.Write("huge", "1");
    std::filesystem::resize_file(folder_.PathOf("huge"), 5'000'000'000);
    EXPECT_EQ(file::loadTextFile(list, Path("huge")), -EFBIG);
    EXPECT_EQ(file::getFileContents(Path("huge")), "1");
}

TEST_F(FileContentsTest, ListsOfLinesAndOfValues) {
    core::StringArray list;
    list.Add("name=a = b");
    list.Add("%1\t\xff");
    EXPECT_EQ(file::saveTextFile(list, Path("f")), 0);
    core::StringArray lines;
    EXPECT_EQ(file::loadTextFile(lines, Path("f")), 0);
    EXPECT_EQ(lines.AsString(), list.AsString());
    lines.Clear();
    EXPECT_EQ(file::saveTextFile(lines, Path("f")), 0);
    EXPECT_EQ(file::getFileSize(Path("f")), 0);

    folder_.Write("conf", "# comment\n a = 1\r\n\nb=2");
    EXPECT_EQ(file::loadConfFile(lines, Path("conf")), 0);
    EXPECT_EQ(lines.AsString(), "a=1\r\nb=2\r\n");
    EXPECT_EQ(file::saveConfFile(lines, Path("conf")), 0);
    EXPECT_EQ(file::getFileContents(Path("conf")), lines.AsString());
}

TEST_F(FileContentsTest, Numbers) {
    struct Row {
        std::string content;
        long long expected;
    };
    long long const unreadable = -70;
    long long const noNumber = -71;
    for (Row const& row :
         {Row{"  42  ", 42}, Row{"\n \t\r\n-7\n8", -7}, Row{"5 apples", 5},
          Row{"99999999999999999999", LLONG_MAX}, Row{"abc\n1", noNumber}, Row{"", unreadable},
          Row{"\n \r\n", unreadable}, Row{std::string("\0\n3", 3), 3}}) {
        folder_.Write("f", row.content);
        EXPECT_EQ(file::getFileContentsAsInt64(Path("f"), unreadable, noNumber), row.expected)
            << row.content;
        EXPECT_EQ(file::getFileContentsAsInt32(Path("f"), unreadable, noNumber),
                  std::min<long long>(row.expected, INT_MAX))
            << row.content;
    }
    EXPECT_EQ(file::getFileContentsAsInt64(Path("none"), LLONG_MIN, 0), LLONG_MIN);
    EXPECT_EQ(file::getFileContentsAsInt32(Path("."), INT_MIN, 0), INT_MIN);
}

}  // namespace
