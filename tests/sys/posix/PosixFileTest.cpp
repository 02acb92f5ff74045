#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/FolderTest.h"
#include "tests/support/PrintText.h"
#include "tests/support/posix/AsNobody.h"

namespace {

using PosixFileTest = support::FolderTest;
using sys::file::Type;
namespace file = sys::file;

TEST_F(PosixFileTest, KindsOfThings) {
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

TEST_F(PosixFileTest, FoldersAreMadeOneOrAll) {
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
    EXPECT_EQ(sys::dir::create("a", true), 0);
    EXPECT_TRUE(file::isDirectory("a"));
    std::filesystem::remove_all(folder_.PathOf("new"));
    EXPECT_EQ(sys::dir::current(), "");
}

}  // namespace
