#include <cerrno>

#include "sys/FileBelow.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "sys/platform/FilesBelow.h"
#include "tests/support/DirectoryTest.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

class FileBelow : public support::DirectoryTest {
protected:
    String const top_ = Path("top");
    sys::platform::ConfinedDirectory directory_;
    void SetUp() override {
        ASSERT_EQ(sys::dir::create(top_, false), 0);
        ASSERT_EQ(directory_.Open(top_.getCString()), 0);
    }
    int Count() const { return sys::file::search(Path("top/*"), true, true).Count(); }
};

TEST_F(FileBelow, HasItsNameOnlyWhenItIsComplete) {
    {
        sys::FileBelow left(directory_);
        ASSERT_EQ(left.Create("a/b/file"), 0);
        ASSERT_EQ(left.WriteAll("half", 4), 0);
    }
    EXPECT_EQ(Count(), 2) << "the two folders";
    sys::FileBelow one(directory_);
    sys::FileBelow other(directory_);
    ASSERT_EQ(one.Create("a/b/file"), 0);
    ASSERT_EQ(other.Create("a/b/file"), 0);
    ASSERT_EQ(other.WriteAll("other", 5), 0);
    EXPECT_EQ(one.TakeOver(false), 0);
    EXPECT_EQ(other.TakeOver(false), -EEXIST);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "");
    EXPECT_EQ(other.TakeOver(true), 0);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "other");
    EXPECT_EQ(Count(), 3);
}

TEST_F(FileBelow, RejectsPathsThatLeadElsewhere) {
    sys::FileBelow file(directory_);
    for (char const* const path : {"", "/a", "a/", "a//b", ".", "..", "./a", "../a", "a/../b"}) {
        EXPECT_EQ(file.Create(path), -EINVAL) << path;
    }
    ASSERT_EQ(sys::file::setFileContents(Path("top/x"), "x", true), 0);
    for (char const* const name : {"", ".", "..", "../y", "a/y"}) {
        EXPECT_EQ(directory_.Rename("x", name, true), -EINVAL) << name;
    }
    EXPECT_EQ(file.Create("x/y"), -ENOTDIR);
    EXPECT_EQ(directory_.Remove("x"), 0);
    EXPECT_EQ(Count(), 0);
    EXPECT_TRUE(directory_.AllowsName(std::string(200, 'n')));
    EXPECT_FALSE(directory_.AllowsName(std::string(300, 'n')));
    EXPECT_EQ(directory_.Open(Path("top/x").getCString()), -ENOENT);
    EXPECT_EQ(sys::FileBelow(directory_).Create("y"), -EBADF);
}

TEST_F(FileBelow, StaysInItsDirectoryWhenTheNameLeadsElsewhere) {
    ASSERT_EQ(sys::dir::create(Path("other"), false), 0);
    sys::FileBelow file(directory_);
    ASSERT_EQ(file.Create("a"), 0);
    bool const moved = sys::file::rename(top_, Path("moved"), false) == 0;
    if (moved) {
        ASSERT_EQ(sys::file::rename(Path("other"), top_, false), 0);
    }
    EXPECT_EQ(file.TakeOver(false), 0);
    EXPECT_EQ(sys::FileBelow(directory_).Create("b/c"), 0);
    EXPECT_EQ(sys::file::search(Path(moved ? "moved/*" : "top/*"), true, true).Count(), 2);
    EXPECT_EQ(sys::file::search(Path(moved ? "top/*" : "other/*"), true, true).Count(), 0);
}

}  // namespace
