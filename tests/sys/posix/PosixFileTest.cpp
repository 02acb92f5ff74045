#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/posix/Unprivileged.h"
#include "tests/sys/expectPaths.h"

namespace {

using PosixFileTest = support::DirectoryTest;
using sys::file::Type;
namespace file = sys::file;

TEST_F(PosixFileTest, KindsOfThings) {
    ASSERT_EQ(mkfifo(Path("pipe").getCString(), 0600), 0);
    std::filesystem::create_symlink("nowhere", directory_.PathOf("dangling"));
    std::filesystem::create_symlink("loop", directory_.PathOf("loop"));
    std::filesystem::create_symlink("f", directory_.PathOf("link"));
    directory_.Write("f", "12345");
    core::String const longName = Path(std::string(300, 'n'));
    expectKinds({Kind{Path("f"), Type::regular, 0, 5}, Kind{Path("link"), Type::link, 0, 5},
                 Kind{Path("."), Type::directory, 0, -EISDIR}, Kind{Path("pipe"), Type::pipe, 0, 0},
                 Kind{"/dev/zero", Type::device, 0, 0}, Kind{"", Type::none, -ENOENT, -ENOENT},
                 Kind{Path("dangling"), Type::link, -ENOENT, -ENOENT},
                 Kind{Path("loop"), Type::link, -ELOOP, -ELOOP},
                 Kind{Path("f/x"), Type::none, -ENOTDIR, -ENOTDIR},
                 Kind{longName, Type::none, -ENAMETOOLONG, -ENAMETOOLONG}});
    EXPECT_EQ(file::stat(Path("f"), nullptr), -EINVAL);
    chmod(Path("f").getCString(), 0);
    support::Unprivileged const unprivileged;
    EXPECT_FALSE(file::exists(Path("f")));
    EXPECT_EQ(file::getFileSize(Path("f")), -EACCES);
}

TEST_F(PosixFileTest, FoldersAreMadeOneOrAll) {
    directory_.Write("file", "");
    std::filesystem::create_symlink("nowhere", directory_.PathOf("dangling"));
    core::String const slashes = core::String::OfChar('/', 1'000'000) + "a";
    expectCreated({Created{Path("new"), 0, 0}, Created{Path("a/b/c"), -ENOENT, 0},
                   Created{Path("a//d///"), 0, 0}, Created{Path("x/../y"), -ENOENT, 0},
                   Created{Path("file"), -EEXIST, -ENOTDIR},
                   Created{Path("file/x"), -ENOTDIR, -ENOTDIR},
                   Created{Path("dangling"), -EEXIST, -EEXIST}, Created{"", -ENOENT, -ENOENT},
                   Created{"/", -EEXIST, 0}, Created{slashes, -ENAMETOOLONG, -ENAMETOOLONG}});
    EXPECT_EQ(file::createPathOfFile("file"), 0) << "the working folder is there";
    ASSERT_EQ(sys::dir::change(Path("new")), 0);
    EXPECT_EQ(sys::dir::current(), std::filesystem::canonical(directory_.PathOf("new")).c_str());
    EXPECT_EQ(sys::dir::change("../file"), -ENOTDIR);
    EXPECT_EQ(sys::dir::create("a", true), 0);
    EXPECT_TRUE(file::isDirectory("a"));
    std::filesystem::remove_all(directory_.PathOf("new"));
    EXPECT_EQ(sys::dir::current(), "");
}

}  // namespace
