#include <windows.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "core/stream/FileStream.h"
#include "sys/FileDirectory.h"
#include "tests/sys/ListedDirectoryTest.h"

namespace {

using WindowsFileTest = ListedDirectoryTest;
using sys::file::Type;
namespace file = sys::file;

TEST_F(WindowsFileTest, DistinguishesTypesOfFiles) {
    directory_.Write("f", "12345");
    expectKinds({Kind{Path("f"), Type::regular, 0, 5}, Kind{Path("F"), Type::regular, 0, 5},
                 Kind{Path("."), Type::directory, 0, -EISDIR}, Kind{"NUL", Type::device, 0, 0},
                 Kind{"", Type::none, -ENOENT, -ENOENT},
                 Kind{Path("f\\x"), Type::none, -ENOENT, -ENOENT},
                 Kind{Path("a|b"), Type::none, -ENOENT, -ENOENT},
                 Kind{Path(std::string(300, 'n')), Type::none, -ENOENT, -ENOENT},
                 Kind{Path("\xff\xfe"), Type::none, -ENOENT, -ENOENT}});
}

TEST_F(WindowsFileTest, CreatesListsAndSearchesDirectories) {
    directory_.Write("file", "");
    expectCreated({Created{Path("new"), 0, 0}, Created{Path("a\\b/c"), -ENOENT, 0},
                   Created{"\\\\?\\" + Path("a\\b\\c\\e"), 0, 0},
                   Created{"\\\\?\\" + Path("a\\f\\g"), -ENOENT, 0},
                   Created{Path("a\\\\d\\\\"), 0, 0}, Created{Path("file"), -EEXIST, -ENOTDIR},
                   Created{Path("file\\x"), -ENOENT, -ENOTDIR}, Created{"", -ENOENT, -ENOENT}});
    EXPECT_EQ(Names(), "a a\\b a\\b\\c a\\b\\c\\e a\\d a\\f a\\f\\g file new ");
    ASSERT_EQ(sys::dir::change(Path("a")), 0);
    EXPECT_EQ(sys::dir::current(), Path("a"));
    EXPECT_EQ(sys::dir::change("..\\file"), -ENOTDIR);
    core::FileDirectory directory;
    ASSERT_EQ(directory.Open(Path(""), false), 0);
    EXPECT_EQ(directory.Count(), 3);
    EXPECT_EQ(directory.Open(Path("file"), false), -ENOTDIR);
    EXPECT_EQ(directory.Open(Path("none"), false), -ENOENT);
    sys::dir::change(Path(".."));
}

TEST_F(WindowsFileTest, AllowsReadingAndRemovingAnOpenFile) {
    directory_.Write("f", "old");
    directory_.Write("new", "new");
    core::FileStream open;
    ASSERT_GE(open.Open(Path("f"), sys::platform::openRead), 0);
    EXPECT_EQ(file::getFileContents(Path("f")), "old");
    EXPECT_EQ(file::copy(Path("new"), Path("f"), false, false, nullptr), -EACCES);
    char buffer[3];
    EXPECT_EQ(open.Read(buffer, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "old");
    EXPECT_EQ(file::remove(Path("f")), 0);
    open.Close();
    EXPECT_EQ(file::remove(Path(".")), -EISDIR);
    EXPECT_EQ(Names(), "new ");
}

TEST_F(WindowsFileTest, CopiesTheReadOnlyAttribute) {
    directory_.Write("from", "x");
    SetFileAttributesA(Path("from").getCString(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(file::copy(Path("from"), Path("to"), false, false, nullptr), 0);
    EXPECT_NE(GetFileAttributesA(Path("to").getCString()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(file::copy(Path("to"), Path("no\\to"), false, false, nullptr), -ENOENT);
    EXPECT_EQ(Names(), "from to ");
}

}  // namespace
