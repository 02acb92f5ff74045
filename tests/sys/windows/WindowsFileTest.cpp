#include <windows.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "core/stream/FileStream.h"
#include "sys/FileDirectory.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/sys/ListedFolderTest.h"

namespace {

using WindowsFileTest = ListedFolderTest;
using core::String;
using sys::file::Type;
namespace file = sys::file;

TEST_F(WindowsFileTest, KindsOfThings) {
    folder_.Write("f", "12345");
    struct Row {
        String path;
        Type type;
        int status;
        long long size;
    };
    for (Row const& row :
         {Row{Path("f"), Type::regular, 0, 5}, Row{Path("F"), Type::regular, 0, 5},
          Row{Path("."), Type::directory, 0, -EISDIR}, Row{"NUL", Type::device, 0, 0},
          Row{"", Type::none, -ENOENT, -ENOENT}, Row{Path("f\\x"), Type::none, -ENOENT, -ENOENT},
          Row{Path("a|b"), Type::none, -ENOENT, -ENOENT},
          Row{Path(std::string(300, 'n')), Type::none, -ENOENT, -ENOENT},
          Row{Path("\xff\xfe"), Type::none, -ENOENT, -ENOENT}}) {
        file::stats status;
        EXPECT_EQ(file::getType(row.path), row.type) << row.path.getCString();
        EXPECT_EQ(file::stat(row.path, &status), row.status) << row.path.getCString();
        EXPECT_EQ(file::getFileSize(row.path), row.size) << row.path.getCString();
        EXPECT_EQ(file::exists(row.path), row.size == 5) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.type == Type::directory);
    }
}

TEST_F(WindowsFileTest, FoldersAreMadeListedAndSearched) {
    folder_.Write("file", "");
    struct Row {
        String path;
        int alone;
        int recursive;
    };
    for (Row const& row :
         {Row{Path("new"), 0, 0}, Row{Path("a\\b/c"), -ENOENT, 0},
          Row{"\\\\?\\" + Path("a\\b\\c\\e"), 0, 0}, Row{"\\\\?\\" + Path("a\\f\\g"), -ENOENT, 0},
          Row{Path("a\\\\d\\\\"), 0, 0}, Row{Path("file"), -EEXIST, -ENOTDIR},
          Row{Path("file\\x"), -ENOENT, -ENOTDIR}, Row{"", -ENOENT, -ENOENT}}) {
        EXPECT_EQ(sys::dir::create(row.path, false), row.alone) << row.path.getCString();
        EXPECT_EQ(sys::dir::create(row.path, true), row.recursive) << row.path.getCString();
        EXPECT_EQ(file::isDirectory(row.path), row.recursive == 0) << row.path.getCString();
    }
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

TEST_F(WindowsFileTest, PathsLongerThanTheSystemTakesPlain) {
    String path = Path("deep");
    for (int i = 0; i < 6; ++i) {
        path.AppendPath(String::OfChar('d', 60));
    }
    path.AppendPath("\xc3\xa4\xe6\x97\xa5\xf0\x9f\x94\xa7");
    EXPECT_EQ(file::createPathOfFile(path), 0);
    EXPECT_EQ(file::setFileContents(path, "42", true), 0);
    EXPECT_EQ(file::copy(path, path + "2", false, false, nullptr), 0);
    EXPECT_EQ(file::rename(path + "2", path, true), 0);
    EXPECT_EQ(file::getFileContentsAsInt32(path, -1, -1), 42);
    EXPECT_EQ(file::search(path.GetFilePath().AppendNewPath("*"), false, true).AsString(),
              path + "\r\n");
    EXPECT_EQ(file::remove(path), 0);
}

TEST_F(WindowsFileTest, AnOpenFileCanBeReadAndRemovedButNotReplaced) {
    folder_.Write("f", "old");
    folder_.Write("new", "new");
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

TEST_F(WindowsFileTest, AFileThatMayOnlyBeReadIsCopiedWithThatRight) {
    folder_.Write("from", "x");
    SetFileAttributesA(Path("from").getCString(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(file::copy(Path("from"), Path("to"), false, false, nullptr), 0);
    EXPECT_NE(GetFileAttributesA(Path("to").getCString()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(file::copy(Path("to"), Path("no\\to"), false, false, nullptr), -ENOENT);
    EXPECT_EQ(Names(), "from to ");
}

}  // namespace
