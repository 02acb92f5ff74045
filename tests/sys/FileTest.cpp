#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "core/crc/crc32.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/system.h"

namespace {

using FileTest = support::DirectoryTest;
namespace file = sys::file;

TEST_F(FileTest, SizesAndChecksums) {
    for (std::size_t const size : {0u, 1u, 9u, 4095u, 4096u, 4097u, 100'000u}) {
        std::string const content = std::string("123456789") + std::string(size, '\x80');
        directory_.Write("f", content.substr(0, size));
        EXPECT_EQ(file::getFileSize(Path("f")), static_cast<long long>(size));
        EXPECT_EQ(file::calculatesCRC32(Path("f")),
                  core::crc32::update(content.data(), static_cast<int>(size), 0));
    }
    std::filesystem::resize_file(directory_.PathOf("f"), 5'000'000'000);
    EXPECT_EQ(file::getFileSize(Path("f")), 5'000'000'000);
}

TEST_F(FileTest, TemporaryFiles) {
    char const* const variable = support::onWindows() ? "TMP" : "TMPDIR";
    std::string const delimiter = support::onWindows() ? "\\" : "/";
    for (std::string const& suffix : {std::string(), delimiter, delimiter + delimiter}) {
        support::setVariable(variable, (directory_.Path() + suffix).c_str());
        EXPECT_EQ(file::getTempPath(), (directory_.Path() + delimiter).c_str());
    }
    core::String const first = file::getTempFileName();
    core::String const second = file::getTempFileName();
    EXPECT_NE(first, second);
    EXPECT_TRUE(first.StartsWith(file::getTempPath() + "Vorx-"));
    EXPECT_EQ(file::getFileSize(first) + file::getFileSize(second), 0);
    support::setVariable(variable, directory_.PathOf("none").c_str());
    EXPECT_EQ(file::getTempFileName(), "");
    support::setVariable(variable, "");
    EXPECT_NE(file::getTempPath(), delimiter.c_str());
    support::setVariable(variable, nullptr);
    EXPECT_TRUE(file::isDirectory(file::getTempPath()));
}

TEST_F(FileTest, HostileNamesAreNamesLikeOthers) {
    // Two of the longest make a path that Windows accepts in a form of its own only.
    std::string const longest(200, 'd');
    std::vector<char const*> names = {
        "%1", "a=b", "-rf", "[x]", "~", longest.c_str(), "\xc3\xa4 \xe6\x97\xa5\xf0\x9f\x94\xa7"};
    if (!support::onWindows()) {
        names.insert(names.end(), {"\x01\x1b[31m", "\xff\xfe", "a\nb", "a\\b", "*?"});
    }
    for (char const* name : names) {
        core::String const folder = Path(name);
        core::String const path = folder.AppendNewPath(name);
        EXPECT_EQ(file::createPathOfFile(path), 0) << name;
        EXPECT_EQ(file::setFileContents(path, "42", true), 0);
        EXPECT_EQ(file::copy(path, path + "2", false, false, nullptr), 0);
        EXPECT_EQ(file::rename(path + "2", path, true), 0);
        EXPECT_EQ(file::setFileAttributes(path, 1) + file::setFileOwnership(path, name, name), 0);
        file::sync();
        EXPECT_EQ(file::getFileContentsAsInt32(path, -1, -1), 42);
        EXPECT_EQ(file::search(folder.AppendNewPath("*"), false, true).AsString(), path + "\r\n");
        EXPECT_EQ(file::remove(path), 0);
    }
}

}  // namespace
