#include <cerrno>

#include "sys/AtomicFile.h"
#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using core::String;
using Existing = sys::AtomicFile::Existing;
using Durable = sys::AtomicFile::Durable;

class AtomicFile : public support::DirectoryTest {
protected:
    String const top_ = Path("top");
    sys::platform::ConfinedDirectory directory_;
    void SetUp() override {
        ASSERT_EQ(sys::dir::create(top_, false), 0);
        ASSERT_EQ(directory_.Open(top_.getCString()), 0);
    }
    int Count() const { return sys::file::search(Path("top/*"), true, true).Count(); }
};

TEST_F(AtomicFile, HasItsNameOnlyOnceCommitted) {
    sys::AtomicFile one;
    sys::AtomicFile other;
    ASSERT_EQ(one.CreateConfined(directory_, "a/b/other"), 0);
    ASSERT_EQ(one.WriteAll("half", 4), 0);
    ASSERT_EQ(one.CreateConfined(directory_, "a/b/file"), 0);
    EXPECT_EQ(Count(), 3) << "two directories and a part: the first was discarded";
    ASSERT_EQ(other.CreateConfined(directory_, "a/b/file"), 0);
    ASSERT_EQ(other.WriteAll("other", 5), 0);
    EXPECT_EQ(one.Commit(Existing::keep, Durable::no), 0);
    EXPECT_EQ(other.Commit(Existing::keep, Durable::no), -EEXIST);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "");
    EXPECT_EQ(other.Commit(Existing::replace, Durable::yes), -EBADF) << "nothing to flush";
    EXPECT_EQ(other.Commit(Existing::replace, Durable::no), 0);
    EXPECT_EQ(sys::file::getFileContents(Path("top/a/b/file")), "other");
    EXPECT_EQ(Count(), 3);
}

TEST_F(AtomicFile, IsNamelessIfTheSystemAllows) {
    sys::AtomicFile file;
    ASSERT_EQ(file.CreateNameless(), 0);
    ASSERT_EQ(file.WriteAll("data", 4), 0);
    ASSERT_EQ(file.Seek(1), 1);
    char read[4];
    EXPECT_EQ(file.Read(read, 4), 3);
    EXPECT_EQ(sys::AtomicFile().Commit(Existing::keep, Durable::no), -EBADF);
}

TEST_F(AtomicFile, RejectsPathsThatLeadElsewhere) {
    sys::AtomicFile file;
    for (char const* const path : {"", "/a", "a/", "a//b", ".", "..", "./a", "../a", "a/../b"}) {
        EXPECT_EQ(file.CreateConfined(directory_, path), -EINVAL) << path;
    }
    ASSERT_EQ(sys::file::setFileContents(Path("top/x"), "x", true), 0);
    EXPECT_EQ(file.CreateConfined(directory_, "x/y"), -ENOTDIR);
    EXPECT_EQ(Count(), 1);
    EXPECT_TRUE(directory_.AllowsName(std::string(200, 'n')));
    EXPECT_FALSE(directory_.AllowsName(std::string(300, 'n')));
    EXPECT_EQ(directory_.Open(Path("top/none").getCString()), -ENOENT);
    EXPECT_EQ(file.CreateConfined(directory_, "y"), -EBADF);
}

TEST_F(AtomicFile, StaysInItsDirectoryIfThatIsMoved) {
    ASSERT_EQ(sys::dir::create(Path("other"), false), 0);
    sys::AtomicFile file;
    ASSERT_EQ(file.CreateConfined(directory_, "a"), 0);
    bool const moved = sys::file::rename(top_, Path("moved"), false) == 0;
    if (moved) {
        ASSERT_EQ(sys::file::rename(Path("other"), top_, false), 0);
    }
    EXPECT_EQ(file.Commit(Existing::keep, Durable::no), 0);
    EXPECT_EQ(sys::AtomicFile().CreateConfined(directory_, "b/c"), 0);
    EXPECT_EQ(sys::file::search(Path(moved ? "moved/*" : "top/*"), true, true).Count(), 2);
    EXPECT_EQ(sys::file::search(Path(moved ? "top/*" : "other/*"), true, true).Count(), 0);
}

}  // namespace
