#include <cerrno>

#include "sys/FileBelow.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "sys/platform/FilesBelow.h"
#include "tests/support/FolderTest.h"
#include "tests/support/PrintText.h"

namespace {

using core::String;

class FileBelow : public support::FolderTest {
protected:
    String const top_ = Path("top");
    void SetUp() override { ASSERT_EQ(sys::dir::create(top_, false), 0); }
    int Count() const { return sys::file::search(Path("top/*"), true, true).Count(); }
};

TEST_F(FileBelow, HasItsNameOnlyWhenItIsComplete) {
    {
        sys::FileBelow left;
        ASSERT_EQ(left.Create(top_, "a/b/file"), 0);
        ASSERT_EQ(left.WriteAll("half", 4), 0);
    }
    EXPECT_EQ(Count(), 2) << "the two folders";
    sys::FileBelow one;
    sys::FileBelow other;
    ASSERT_EQ(one.Create(top_, "a/b/file"), 0);
    ASSERT_EQ(other.Create(top_, "a/b/file"), 0);
    ASSERT_EQ(other.WriteAll("other", 5), 0);
    EXPECT_EQ(one.TakeOver(false), 0);
    EXPECT_EQ(other.TakeOver(false), -EEXIST);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "");
    EXPECT_EQ(other.TakeOver(true), 0);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "other");
    EXPECT_EQ(Count(), 3);
}

TEST_F(FileBelow, PathsThatLeadElsewhereAreRefused) {
    sys::FileBelow file;
    for (char const* const path : {"", "/a", "a/", "a//b", ".", "..", "./a", "../a", "a/../b"}) {
        EXPECT_EQ(file.Create(top_, path), -EINVAL) << path;
    }
    ASSERT_EQ(sys::file::setFileContents(Path("top/x"), "x", true), 0);
    for (char const* const name : {"", ".", "..", "../y", "a/y"}) {
        EXPECT_EQ(sys::platform::renameBelow(top_.getCString(), "x", name, true), -EINVAL) << name;
    }
    EXPECT_EQ(file.Create(top_, "x/y"), -ENOTDIR);
    EXPECT_EQ(file.Create(Path("none"), "y"), -ENOENT);
    EXPECT_EQ(sys::platform::removeBelow(top_.getCString(), "x"), 0);
    EXPECT_EQ(Count(), 0);
}

}  // namespace
