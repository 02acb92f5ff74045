#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <vector>

#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/system.h"

namespace {

using FileContentsTest = support::DirectoryTest;
namespace file = sys::file;

TEST_F(FileContentsTest, WritesAndReadsText) {
    directory_.Write("f", std::string(50, 'x'));
    EXPECT_EQ(file::setFileContents(Path("f"), "long text", true), 0);
    EXPECT_EQ(file::setFileContents(Path("f"), "LONG", false), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "LONG text");
    core::String const big = core::String::OfChar('b', 10'000);
    EXPECT_EQ(file::addFileContents(Path("new"), big) + file::addFileContents(Path("new"), big), 0);
    EXPECT_EQ(file::getFileContents(Path("new")), big + big);
    directory_.Write("zero", "ab" + std::string(5000, '\0') + "after");
    EXPECT_EQ(file::getFileContents(Path("zero")), "ab");
    EXPECT_EQ(file::remove(Path("f")), 0);
    EXPECT_EQ(file::remove(Path("f")), -ENOENT);
}

TEST_F(FileContentsTest, ReturnsTheErrorOfEachFailure) {
    core::StringArray list;
    list.Add("%1\t\xff");
    using Row = std::tuple<core::String, int, int>;
    std::vector<Row> rows{{Path("no/f"), -ENOENT, -ENOENT}, {Path("."), -EISDIR, -EISDIR}};
    if (!support::onWindows()) {
        rows.insert(rows.end(), {{"/dev/full", -ENOTSUP, -ENOSPC}, {"/proc/self/mem", -EIO, -EIO}});
    }
    for (auto const& [path, reading, writing] : rows) {
        EXPECT_EQ(file::setFileContents(path, "x", true), writing) << path.getCString();
        EXPECT_EQ(file::addFileContents(path, "x"), writing);
        EXPECT_EQ(file::saveTextFile(list, path), writing);
        EXPECT_EQ(file::loadTextFile(list, path), reading);
        EXPECT_EQ(file::loadConfFile(list, path), reading);
        EXPECT_EQ(file::getFileContents(path), "");
        EXPECT_EQ(file::getFileContentsAsInt64(path, 1, 2), 1);
        unsigned crc = 1;
        EXPECT_EQ(file::calculatesCRC32(path, crc) + static_cast<int>(crc), reading);
    }
    directory_.Write("huge", "1");
    std::filesystem::resize_file(directory_.PathOf("huge"), 5'000'000'000);
    EXPECT_EQ(file::loadTextFile(list, Path("huge")), -EFBIG);
    EXPECT_EQ(list.AsString(), "%1\t\xff\r\n");
}

TEST_F(FileContentsTest, LoadsAndSavesLists) {
    directory_.Write("f", "\xEF\xBB\xBF# comment\n a = 1\r\n\nb=2");
    core::StringArray list;
    EXPECT_EQ(file::loadConfFile(list, Path("f")), 0);
    EXPECT_EQ(list.AsString(), "a=1\r\nb=2\r\n");
    EXPECT_EQ(file::saveConfFile(list, Path("f")), 0);
    list.Clear();
    EXPECT_EQ(file::loadTextFile(list, Path("f")), 0);
    EXPECT_EQ(list.AsString(), "a=1\r\nb=2\r\n");
}

TEST_F(FileContentsTest, ReadsNumbers) {
    using Row = std::pair<std::string, long long>;
    for (auto const& [content, expected] :
         {Row{"  42  ", 42}, Row{"\n \t\r\n-7\n8", -7}, Row{"5 apples", 5}, Row{"abc\n1", -71},
          Row{"99999999999999999999", LLONG_MAX}, Row{"", -70}, Row{"\n \r\n", -70}}) {
        directory_.Write("f", content);
        EXPECT_EQ(file::getFileContentsAsInt64(Path("f"), -70, -71), expected) << content;
        EXPECT_EQ(file::getFileContentsAsInt32(Path("f"), -70, -71),
                  std::min<long long>(expected, INT_MAX));
    }
}

}  // namespace
