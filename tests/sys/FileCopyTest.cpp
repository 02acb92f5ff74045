#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "sys/file.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"
#include "tests/sys/ListedFolderTest.h"

namespace {

namespace file = sys::file;
namespace fs = std::filesystem;
using FileCopyTest = ListedFolderTest;

TEST_F(FileCopyTest, IsTheSourceToTheByte) {
    std::string content(200'001, '\0');
    content[70'000] = '\xff';
    directory_.Write("from", content);
    unsigned const crc = file::calculatesCRC32(Path("from"));
    for (int flags = 0; flags < 4; ++flags) {
        directory_.Write("to", std::string(300'000, 'o'));
        support::CopyWatcher watcher;
        EXPECT_EQ(file::copy(Path("from"), Path("to"), (flags & 1) != 0, flags > 1, &watcher), 0);
        EXPECT_EQ(file::calculatesCRC32(Path("to")), crc);
        EXPECT_EQ(watcher.done, 200'001);
    }
    EXPECT_EQ(file::copy(Path("from"), Path("from"), true, false, nullptr), 0) << "onto itself";
    EXPECT_EQ(file::calculatesCRC32(Path("from")), crc);
    EXPECT_EQ(Names(), "from to ");
}

TEST_F(FileCopyTest, RenameReplacesOnlyWhenAsked) {
    directory_.Write("a", "A");
    directory_.Write("b", "B");
    fs::create_directory(directory_.PathOf("folder"));
    EXPECT_EQ(file::rename(Path("a"), Path("b"), false), -EEXIST);
    EXPECT_EQ(file::getFileContents(Path("b")), "B");
    EXPECT_EQ(file::rename(Path("a"), Path("b"), true), 0);
    EXPECT_EQ(file::getFileContents(Path("b")), "A");
    EXPECT_LT(file::rename(Path("folder"), Path("folder/in"), false), 0);
    EXPECT_EQ(Names(), "b folder ");
}

}  // namespace
