#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <filesystem>

#include "sys/AtomicFile.h"
#include "sys/file.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"
#include "tests/support/posix/SmallDisk.h"
#include "tests/support/posix/Unprivileged.h"
#include "tests/sys/ListedFolderTest.h"

namespace {

using PosixCopyTest = ListedFolderTest;
namespace file = sys::file;
namespace fs = std::filesystem;

TEST_F(PosixCopyTest, TakesTheRightsAndLeavesHolesWhenAsked) {
    directory_.Write("from", std::string(200'001, '\0'));
    chmod(Path("from").getCString(), 0710);
    for (bool const sparse : {false, true}) {
        EXPECT_EQ(file::copy(Path("from"), Path("to"), sparse, false, nullptr), 0);
        struct stat status {};
        ASSERT_EQ(stat(Path("to").getCString(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0710u);
        EXPECT_EQ(status.st_blocks * 512 < 200'001, sparse);
    }
}

TEST_F(PosixCopyTest, AFailedOneLeavesTheFolderAsItWas) {
    directory_.Write("from", std::string(300'000, 'x'));
    directory_.Write("to", "old");
    fs::create_directory(directory_.PathOf("folder"));
    fs::create_symlink("loop", directory_.PathOf("loop"));
    ASSERT_EQ(mkfifo(Path("pipe").getCString(), 0600), 0);
    core::String const names = Names();
    using Row = std::tuple<core::String, core::String, int>;
    for (auto const& [from, to, expected] :
         {Row{Path("none"), Path("to"), -ENOENT}, Row{Path("folder"), Path("to"), -EISDIR},
          Row{Path("loop"), Path("to"), -ELOOP}, Row{Path("pipe"), Path("to"), -ENOTSUP},
          Row{Path("from"), Path("loop"), -ELOOP}, Row{Path("from"), Path("pipe"), -ENOTSUP},
          Row{Path("from"), "/dev/full", -ENOTSUP}, Row{Path("from"), Path("no/to"), -ENOENT},
          Row{Path("from"), Path("to/x"), -ENOTDIR}, Row{Path("from"), "", -ENOENT},
          Row{Path("from"), Path("folder"), -EISDIR}, Row{Path("from"), Path("to"), -ECANCELED}}) {
        support::CopyWatcher watcher;
        watcher.most = expected == -ECANCELED ? 70'000 : LLONG_MAX;
        EXPECT_EQ(file::copy(from, to, false, false, &watcher), expected)
            << from.getCString() << " to " << to.getCString();
        EXPECT_EQ(file::getFileContents(Path("to")), "old");
        EXPECT_EQ(Names(), names);
    }
    chmod(Path(".").getCString(), 0777);
    chmod(Path("to").getCString(), 0444);
    support::Unprivileged const unprivileged;
    EXPECT_EQ(file::getFileContents(Path("to")), "old");
    EXPECT_EQ(file::copy(Path("from"), Path("to"), false, false, nullptr), -EACCES);
}

TEST_F(PosixCopyTest, AFullDiskIsAnErrorThatLeavesNothing) {
    fs::create_directory(directory_.PathOf("disk"));
    support::SmallDisk const disk(directory_.PathOf("disk"));
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "only root may mount a small disk";
    }
    core::String const big = core::String::OfChar('x', 300'000);
    directory_.Write("big", big.getCString());
    directory_.Write("disk/to", "old");
    EXPECT_EQ(file::copy(Path("big"), Path("disk/to"), false, true, nullptr), -ENOSPC);
    EXPECT_EQ(file::rename(Path("big"), Path("disk/to"), true), -ENOSPC);
    EXPECT_EQ(file::rename(Path("big"), Path("disk/to"), false), -EEXIST)
        << "and not a copy that finds no room";
    EXPECT_EQ(Names(), "big disk disk/to ");
    fs::create_directory(directory_.PathOf("disk/folder"));
    EXPECT_EQ(file::rename(Path("disk/folder"), Path("moved"), false), -EXDEV);
    EXPECT_EQ(file::rename(Path("disk/to"), Path("moved"), false), 0) << "to another disk";
    EXPECT_EQ(file::getFileContents(Path("moved")), "old");
    EXPECT_EQ(Names(), "big disk disk/folder moved ");
}

TEST_F(PosixCopyTest, LinksLeadToWhatIsReplaced) {
    directory_.Write("from", "new");
    directory_.Write("real", "old");
    fs::create_symlink("real", directory_.PathOf("link"));
    fs::create_symlink("nowhere", directory_.PathOf("dangling"));
    EXPECT_EQ(file::copy(Path("from"), Path("link"), false, false, nullptr), 0);
    EXPECT_EQ(file::copy(Path("from"), Path("dangling"), false, false, nullptr), 0);
    EXPECT_EQ(file::getType(Path("link")), file::Type::link);
    EXPECT_EQ(file::getFileContents(Path("real")), "new");
    EXPECT_EQ(file::getFileContents(Path("dangling")), "new");
    {
        sys::AtomicFile replacement;
        EXPECT_EQ(replacement.Create(Path(".")), -EISDIR);
        ASSERT_EQ(replacement.Create(Path("link")), 0);
        EXPECT_EQ(replacement.Commit(sys::AtomicFile::Existing::keep, sys::AtomicFile::Durable::no),
                  -EEXIST);
    }
    EXPECT_EQ(Names(), "dangling from link real ");
}

}  // namespace
