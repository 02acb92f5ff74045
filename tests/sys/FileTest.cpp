#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "core/crc/crc32.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/AsNobody.h"
#include "tests/support/FolderTest.h"
#include "tests/support/PrintText.h"

namespace {

using FileTest = support::FolderTest;
using sys::file::Type;
namespace file = sys::file;

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

TEST_F(FileTest, KindsOfThings) {
    ASSERT_EQ(mkfifo(Path("pipe").getCString(), 0600), 0);
    std::filesystem::create_symlink("nowhere", folder_.PathOf("dangling"));
    std::filesystem::create_symlink("loop", folder_.PathOf("loop"));
    std::filesystem::create_symlink("f", folder_.PathOf("link"));
    folder_.Write("f", "12345");
    struct Row {
        core::String path;
        Type type;
        int status;
        long long size;
    };
    core::String const longName = Path(std::string(300, 'n'));
    for (Row const& row :
         {Row{Path("f"), Type::regular, 0, 5}, Row{Path("link"), Type::link, 0, 5},
          Row{Path("."), Type::directory, 0, -EISDIR}, Row{Path("pipe"), Type::pipe, 0, 0},
          Row{"/dev/zero", Type::device, 0, 0}, Row{"", Type::none, -ENOENT, -ENOENT},
          Row{Path("dangling"), Type::link, -ENOENT, -ENOENT},
          Row{Path("loop"), Type::link, -ELOOP, -ELOOP},
          Row{Path("f/x"), Type::none, -ENOTDIR, -ENOTDIR},
          Row{longName, Type::none, -ENAMETOOLONG, -ENAMETOOLONG}}) {
        file::stats status;
        EXPECT_EQ(file::getType(row.path), row.type) << row.path.getCString();
        EXPECT_EQ(file::stat(row.path, &status), row.status) << row.path.getCString();
        EXPECT_EQ(file::getFileSize(row.path), row.size) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.type == Type::directory);
        EXPECT_EQ(file::exists(row.path), row.size == 5);
        EXPECT_EQ(file::calculatesCRC32(row.path) != 0, row.size == 5) << "and it comes back";
    }
    EXPECT_EQ(file::stat(Path("f"), nullptr), -EINVAL);
    chmod(Path("f").getCString(), 0);
    support::AsNobody const nobody;
    EXPECT_FALSE(file::exists(Path("f")));
    EXPECT_EQ(file::getFileSize(Path("f")), -EACCES);
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
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(file::getTempPath(), "/tmp/");
    unsetenv("TMPDIR");
}

TEST_F(FileTest, HostileNamesAreNamesLikeOthers) {
    for (char const* name :
         {"\x01\x1b[31m", "\xff\xfe", "%1", "a=b", "a\nb", "-rf", "a\\b", "*?"}) {
        core::String const folder = Path(name);
        core::String const path = folder.AppendNewPath(name);
        EXPECT_EQ(file::createPathOfFile(path), 0) << name;
        EXPECT_EQ(file::setFileContents(path, "42", true), 0);
        EXPECT_EQ(file::copy(path, path + "2", false, false, nullptr), 0);
        EXPECT_EQ(file::rename(path + "2", path, true), 0);
        EXPECT_EQ(file::setFileAttributes(path, 0), 0);
        EXPECT_EQ(file::setFileOwnership(path, name, name), 0);
        file::sync();
        EXPECT_EQ(file::getFileContentsAsInt32(path, -1, -1), 42);
        EXPECT_EQ(file::search(folder.AppendNewPath("*"), false, true).AsString(), path + "\r\n");
    }
}

TEST_F(FileTest, FoldersAreMadeOneOrAll) {
    folder_.Write("file", "");
    std::filesystem::create_symlink("nowhere", folder_.PathOf("dangling"));
    struct Row {
        core::String path;
        int alone;
        int recursive;
    };
    core::String const slashes = core::String::OfChar('/', 1'000'000) + "a";
    for (Row const& row :
         {Row{Path("new"), 0, 0}, Row{Path("a/b/c"), -ENOENT, 0}, Row{Path("a//d///"), 0, 0},
          Row{Path("x/../y"), -ENOENT, 0}, Row{Path("file"), -EEXIST, -ENOTDIR},
          Row{Path("file/x"), -ENOTDIR, -ENOTDIR}, Row{Path("dangling"), -EEXIST, -EEXIST},
          Row{"", -ENOENT, -ENOENT}, Row{"/", -EEXIST, 0},
          Row{slashes, -ENAMETOOLONG, -ENAMETOOLONG}}) {
        EXPECT_EQ(sys::dir::create(row.path, false), row.alone) << row.path.getCString();
        EXPECT_EQ(sys::dir::create(row.path, true), row.recursive) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.recursive == 0) << row.path.getCString();
    }
    EXPECT_EQ(file::createPathOfFile("file"), 0) << "the working folder is there";
    ASSERT_EQ(sys::dir::change(Path("new")), 0);
    EXPECT_EQ(sys::dir::current(), std::filesystem::canonical(folder_.PathOf("new")).c_str());
    EXPECT_EQ(sys::dir::change("../file"), -ENOTDIR);
    std::filesystem::remove(folder_.PathOf("new"));
    EXPECT_EQ(sys::dir::current(), "");
}

}  // namespace
