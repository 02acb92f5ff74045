#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "core/crc/crc32.h"
#include "sys/file.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace file = sys::file;

class FileTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }

    support::TemporaryFolder folder_;
};

TEST_F(FileTest, SizesAndChecksums) {
    for (std::size_t const size : {0u, 1u, 9u, 4095u, 4096u, 4097u, 100'000u}) {
        std::string const content = std::string("123456789") + std::string(size, '\x80');
        folder_.Write("f", content.substr(0, size));
        EXPECT_TRUE(file::exists(Path("f")));
        EXPECT_EQ(file::getFileSize(Path("f")), static_cast<long long>(size));
        EXPECT_EQ(file::calculatesCRC32(Path("f")),
                  core::crc32::update(content.data(), static_cast<int>(size), 0));
    }
    std::filesystem::resize_file(folder_.PathOf("f"), 5'000'000'000);
    EXPECT_EQ(file::getFileSize(Path("f")), 5'000'000'000);
}

TEST_F(FileTest, WhatIsNoFile) {
    EXPECT_FALSE(file::exists(Path("none")));
    EXPECT_FALSE(file::exists(""));
    EXPECT_FALSE(file::exists(folder_.Path().c_str())) << "a folder";
    EXPECT_FALSE(file::exists("/dev/zero")) << "a device, or nothing at all";
    EXPECT_EQ(file::getFileSize(Path("none")), -ENOENT);
    EXPECT_EQ(file::getFileSize(folder_.Path().c_str()), -EISDIR);
    EXPECT_EQ(file::calculatesCRC32(Path("none")), 0u);
    EXPECT_EQ(file::calculatesCRC32(folder_.Path().c_str()), 0u);
}

TEST_F(FileTest, WholeContents) {
    EXPECT_STREQ(file::getFileContents(Path("f")).getCString(), "");
    EXPECT_EQ(file::setFileContents(Path("f"), "long text", true), 0);
    EXPECT_EQ(file::setFileContents(Path("f"), "LONG", false), 0);
    EXPECT_STREQ(file::getFileContents(Path("f")).getCString(), "LONG text");
    EXPECT_EQ(file::setFileContents(Path("f"), "short", true), 0);
    EXPECT_STREQ(file::getFileContents(Path("f")).getCString(), "short");
    std::string const big(10'000, 'b');
    EXPECT_EQ(file::setFileContents(Path("f"), big.c_str(), true), 0);
    EXPECT_STREQ(file::getFileContents(Path("f")).getCString(), big.c_str());
    EXPECT_EQ(file::setFileContents(Path("no/f"), "x", true), -ENOENT);
    EXPECT_EQ(file::setFileContents(folder_.Path().c_str(), "x", true), -EISDIR);
    EXPECT_EQ(file::remove(Path("f")), 0);
    EXPECT_EQ(file::remove(Path("f")), -ENOENT);
}

}  // namespace
