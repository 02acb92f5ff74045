#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <vector>

#include "sys/file.h"
#include "tests/support/FolderTest.h"
#include "tests/support/PrintText.h"
#include "tests/support/system.h"

namespace {

using FileContentsTest = support::FolderTest;
namespace file = sys::file;

TEST_F(FileContentsTest, WrittenAndReadAgain) {
    folder_.Write("f", std::string(50, 'x'));
    EXPECT_EQ(file::setFileContents(Path("f"), "long text", true), 0);
    EXPECT_EQ(file::setFileContents(Path("f"), "LONG", false), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "LONG text");
    core::String const big = core::String::OfChar('b', 10'000);
    EXPECT_EQ(file::addFileContents(Path("new"), big) + file::addFileContents(Path("new"), big), 0);
    EXPECT_EQ(file::getFileContents(Path("new")), big + big);
    folder_.Write("zero", "ab" + std::string(5000, '\0') + "behind");
    EXPECT_EQ(file::getFileContents(Path("zero")), "ab");
    EXPECT_EQ(file::remove(Path("f")), 0);
    EXPECT_EQ(file::remove(Path("f")), -ENOENT);
}

TEST_F(FileContentsTest, EveryFailureHasItsCode) {
    core::StringArray list;
    list.Add("%1\t\xff");
    struct Row {
        core::String path;
        int reading;
        int writing;
    };
    std::vector<Row> rows{{Path("no/f"), -ENOENT, -ENOENT}, {Path("."), -EISDIR, -EISDIR}};
    if (!support::onWindows()) {
        rows.push_back({"/dev/full", -ENOTSUP, -ENOSPC});
        rows.push_back({"/proc/self/mem", -EIO, -EIO});
    }
    for (Row const& row : rows) {
        EXPECT_EQ(file::setFileContents(row.path, "x", true), row.writing) << row.path.getCString();
        EXPECT_EQ(file::addFileContents(row.path, "x"), row.writing);
        EXPECT_EQ(file::saveTextFile(list, row.path), row.writing);
        EXPECT_EQ(file::loadTextFile(list, row.path), row.reading);
        EXPECT_EQ(file::loadConfFile(list, row.path), row.reading);
        EXPECT_EQ(file::getFileContents(row.path), "");
        EXPECT_EQ(file::getFileContentsAsInt64(row.path, 1, 2), 1);
        unsigned crc = 1;
        EXPECT_EQ(file::calculatesCRC32(row.path, crc) + static_cast<int>(crc), row.reading);
    }
    folder_.Write("huge", "1");
    std::filesystem::resize_file(folder_.PathOf("huge"), 5'000'000'000);
    EXPECT_EQ(file::loadTextFile(list, Path("huge")), -EFBIG);
    EXPECT_EQ(list.AsString(), "%1\t\xff\r\n");
}

TEST_F(FileContentsTest, ListsOfLinesAndOfValues) {
    folder_.Write("f", "\xEF\xBB\xBF# comment\n a = 1\r\n\nb=2");
    core::StringArray list;
    EXPECT_EQ(file::loadConfFile(list, Path("f")), 0);
    EXPECT_EQ(list.AsString(), "a=1\r\nb=2\r\n");
    EXPECT_EQ(file::saveConfFile(list, Path("f")), 0);
    list.Clear();
    EXPECT_EQ(file::loadTextFile(list, Path("f")), 0);
    EXPECT_EQ(list.AsString(), "a=1\r\nb=2\r\n");
}

TEST_F(FileContentsTest, Numbers) {
    struct Row {
        std::string content;
        long long expected;
    };
    for (Row const& row :
         {Row{"  42  ", 42}, Row{"\n \t\r\n-7\n8", -7}, Row{"5 apples", 5}, Row{"abc\n1", -71},
          Row{"99999999999999999999", LLONG_MAX}, Row{"", -70}, Row{"\n \r\n", -70}}) {
        folder_.Write("f", row.content);
        EXPECT_EQ(file::getFileContentsAsInt64(Path("f"), -70, -71), row.expected) << row.content;
        EXPECT_EQ(file::getFileContentsAsInt32(Path("f"), -70, -71),
                  std::min<long long>(row.expected, INT_MAX));
    }
}

}  // namespace
