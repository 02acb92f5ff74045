#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "core/crc/crc32.h"
#include "sys/file.h"
#include "tests/support/AsNobody.h"
#include "tests/support/PrintText.h"
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
    EXPECT_EQ(file::getFileSize(Path("none")), -ENOENT);
    EXPECT_EQ(file::getFileSize(folder_.Path().c_str()), -EISDIR);
    EXPECT_EQ(file::calculatesCRC32(Path("none")), 0u);
    EXPECT_EQ(file::calculatesCRC32(folder_.Path().c_str()), 0u);
}

TEST_F(FileTest, Kinds) {
    ASSERT_EQ(mkfifo(folder_.PathOf("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", folder_.PathOf("dangling"));
    std::filesystem::create_symlink("loop", folder_.PathOf("loop"));
    std::filesystem::create_directory_symlink(folder_.Path(), folder_.PathOf("link"));
    folder_.Write("f", "12345");
    struct Row {
        core::String path;
        file::Type type;
        int status;
        bool isDirectory;
        long long size;
        bool exists;
    };
    for (Row const& row : {
             Row{Path("f"), file::Type::regular, 0, false, 5, true},
             Row{Path("."), file::Type::directory, 0, true, -EISDIR, false},
             Row{Path("link"), file::Type::link, 0, true, -EISDIR, false},
             Row{Path("dangling"), file::Type::link, -ENOENT, false, -ENOENT, false},
             Row{Path("loop"), file::Type::link, -ELOOP, false, -ELOOP, false},
             Row{Path("pipe"), file::Type::pipe, 0, false, 0, false},
             Row{"/dev/null", file::Type::device, 0, false, 0, false},
             Row{Path("f/x"), file::Type::none, -ENOTDIR, false, -ENOTDIR, false},
             Row{Path(std::string(300, 'n')), file::Type::none, -ENAMETOOLONG, false, -ENAMETOOLONG,
                 false},
             Row{"", file::Type::none, -ENOENT, false, -ENOENT, false},
         }) {
        file::stats status;
        EXPECT_EQ(file::getType(row.path), row.type) << row.path.getCString();
        EXPECT_EQ(file::stat(row.path, &status), row.status) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.isDirectory) << row.path.getCString();
        EXPECT_EQ(file::getFileSize(row.path), row.size) << row.path.getCString();
        EXPECT_EQ(file::exists(row.path), row.exists) << row.path.getCString();
    }
    file::stats status;
    ASSERT_EQ(file::stat(Path("f"), &status), 0);
    EXPECT_EQ(status.size, 5);
    EXPECT_EQ(status.type, file::Type::regular);
    EXPECT_EQ(file::stat(Path("f"), nullptr), -EINVAL);
    EXPECT_EQ(file::calculatesCRC32("/dev/zero"), 0u) << "and it comes back";
    EXPECT_EQ(file::calculatesCRC32(Path("pipe")), 0u);
}

TEST_F(FileTest, WhatMayNotBeRead) {
    folder_.Write("f", "secret");
    std::filesystem::permissions(folder_.PathOf("f"), std::filesystem::perms::none);
    support::AsNobody const nobody;
    file::stats status;
    EXPECT_FALSE(file::exists(Path("f")));
    EXPECT_EQ(file::getFileSize(Path("f")), -EACCES);
    EXPECT_EQ(file::calculatesCRC32(Path("f")), 0u);
    EXPECT_EQ(file::stat(Path("f"), &status), 0);
    EXPECT_EQ(file::getFileContentsAsInt32(Path("f"), -7, -8), -7);
}

TEST_F(FileTest, TemporaryFiles) {
    for (char const* suffix : {"", "/", "///"}) {
        setenv("TMPDIR", (folder_.Path() + suffix).c_str(), 1);
        EXPECT_EQ(file::getTempPath(), (folder_.Path() + "/").c_str());
    }
    core::String const first = file::getTempFileName();
    core::String const second = file::getTempFileName();
    EXPECT_NE(first, second);
    EXPECT_TRUE(first.StartsWith(file::getTempPath() + "Vorx-"));
    EXPECT_EQ(file::getFileSize(first) + file::getFileSize(second), 0);
    setenv("TMPDIR", folder_.PathOf("none").c_str(), 1);
    EXPECT_EQ(file::getTempFileName(), "");
    setenv("TMPDIR", "/", 1);
    EXPECT_EQ(file::getTempPath(), "/");
    for (auto const& unset : {+[] { unsetenv("TMPDIR"); }, +[] { setenv("TMPDIR", "", 1); }}) {
        unset();
        EXPECT_EQ(file::getTempPath(), "/tmp/");
    }
}

TEST_F(FileTest, HostileNamesAreNamesLikeOthers) {
    for (std::string const name :
         {"\x01\x1b[31m", "\xff\xfe", "%1", "a=b", "a\nb", "-rf", "a\\b", "*?"}) {
        core::String const path = Path(name);
        core::String const moved = Path(name + ".moved");
        EXPECT_EQ(file::setFileContents(path, "42", true), 0) << name;
        EXPECT_TRUE(file::exists(path));
        EXPECT_EQ(file::copy(path, moved, false, false, nullptr), 0);
        EXPECT_EQ(file::rename(moved, path, true), 0);
        EXPECT_EQ(file::getFileContentsAsInt32(path, -1, -1), 42);
        core::StringArray const found = file::search(Path("*"), false, true);
        ASSERT_EQ(found.Count(), 1);
        EXPECT_EQ(found[0], path);
        EXPECT_EQ(file::remove(path), 0);
    }
}

TEST_F(FileTest, RightsAndOwnersStayAsTheyAre) {
    EXPECT_EQ(file::setFileAttributes(Path("none"), 0777), 0);
    EXPECT_EQ(file::setFileOwnership(Path("none"), "root", "%1"), 0);
    file::sync();
    EXPECT_EQ(file::getType(Path("none")), file::Type::none);
}

}  // namespace
