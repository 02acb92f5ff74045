#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "sys/ReplacementFile.h"
#include "sys/file.h"
#include "tests/support/AsNobody.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace file = sys::file;
namespace fs = std::filesystem;

class FileCopyTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }
    /// The names in the folder, sorted.
    core::String Names() const {
        core::String names;
        core::StringArray const found = file::search(Path("*"), false, true);
        for (int i = 0; i < found.Count(); ++i) {
            names += found[i].GetFileName() + " ";
        }
        return names;
    }

    support::TemporaryFolder folder_;
};

TEST_F(FileCopyTest, IsTheSourceToTheByteWithItsRights) {
    for (std::size_t const size : {0u, 1u, 65'536u, 200'001u}) {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; i += 7) {
            content[i] = static_cast<char>(i);
        }
        folder_.Write("from", content);
        fs::permissions(folder_.PathOf("from"), fs::perms::owner_all | fs::perms::group_exec);
        for (int flags = 0; flags < 4; ++flags) {
            folder_.Write("to", "older and perhaps longer");
            support::CopyWatcher watcher;
            ASSERT_EQ(
                file::copy(Path("from"), Path("to"), (flags & 1) != 0, (flags & 2) != 0, &watcher),
                0);
            std::ifstream copied(folder_.PathOf("to"), std::ios::binary);
            EXPECT_EQ(std::string(std::istreambuf_iterator<char>(copied), {}), content);
            EXPECT_EQ(watcher.steps.back(), static_cast<long long>(size));
            EXPECT_EQ(watcher.lastTotal, static_cast<long long>(size));
            EXPECT_EQ(fs::status(folder_.PathOf("to")).permissions(),
                      fs::status(folder_.PathOf("from")).permissions());
        }
        EXPECT_EQ(file::copy(Path("from"), Path("from"), false, false, nullptr), 0)
            << "onto itself";
        EXPECT_EQ(file::getFileSize(Path("from")), static_cast<long long>(size));
    }
    EXPECT_EQ(Names(), "from to ");
}

TEST_F(FileCopyTest, ASparseFileOfMoreThanFourGiBStaysSparse) {
    folder_.Write("from", "start");
    fs::resize_file(folder_.PathOf("from"), 4'500'000'000);
    EXPECT_EQ(file::copy(Path("from"), Path("to"), true, false, nullptr), 0);
    EXPECT_EQ(file::getFileSize(Path("to")), 4'500'000'000);
    EXPECT_EQ(file::getFileContents(Path("to")), "start");
    struct stat status {};
    ASSERT_EQ(stat(folder_.PathOf("to").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks, 1000);
}

TEST_F(FileCopyTest, AFailedOneLeavesTheFolderAsItWas) {
    folder_.Write("from", std::string(300'000, 'x'));
    folder_.Write("to", "old");
    folder_.Write("locked", "old");
    fs::create_directory(folder_.PathOf("folder"));
    fs::create_symlink("loop", folder_.PathOf("loop"));
    ASSERT_EQ(mkfifo(folder_.PathOf("pipe").c_str(), 0600), 0);
    core::String const names = Names();
    struct Row {
        core::String from;
        core::String to;
        int expected;
    };
    for (Row const& row :
         {Row{Path("none"), Path("to"), -ENOENT}, Row{Path("folder"), Path("to"), -EISDIR},
          Row{Path("loop"), Path("to"), -ELOOP}, Row{Path("pipe"), Path("to"), -ENOTSUP},
          Row{"/dev/zero", Path("to"), -ENOTSUP}, Row{Path("from"), Path("folder"), -EISDIR},
          Row{Path("from"), Path("loop"), -ELOOP}, Row{Path("from"), Path("pipe"), -ENOTSUP},
          Row{Path("from"), "/dev/full", -ENOTSUP}, Row{Path("from"), Path("no/to"), -ENOENT},
          Row{Path("from"), Path("to/x"), -ENOTDIR}, Row{Path("from"), "", -ENOENT}}) {
        EXPECT_EQ(file::copy(row.from, row.to, false, false, nullptr), row.expected)
            << row.from.getCString() << " to " << row.to.getCString();
        EXPECT_EQ(file::getFileContents(Path("to")), "old");
        EXPECT_EQ(Names(), names);
    }
    for (long long const most : {-1, 0, 70'000, 299'999}) {
        support::CopyWatcher watcher(most);
        EXPECT_EQ(file::copy(Path("from"), Path("to"), false, false, &watcher), -ECANCELED);
        EXPECT_EQ(file::getFileContents(Path("to")), "old");
        EXPECT_EQ(Names(), names);
    }
    fs::permissions(folder_.Path(), fs::perms::all);
    fs::permissions(folder_.PathOf("locked"), fs::perms::owner_read);
    support::AsNobody const nobody;
    EXPECT_EQ(file::copy(Path("from"), Path("locked"), false, false, nullptr), -EACCES);
}

TEST_F(FileCopyTest, AFullDiskIsAnErrorThatLeavesNothing) {
    fs::create_directory(folder_.PathOf("disk"));
    support::SmallDisk const disk(folder_.PathOf("disk"));
    if (!disk.IsMounted()) {
        GTEST_SKIP() << "only root may mount a small disk";
    }
    folder_.Write("from", std::string(300'000, 'x'));
    folder_.Write("disk/to", "old");
    EXPECT_EQ(file::copy(Path("from"), Path("disk/to"), false, true, nullptr), -ENOSPC);
    EXPECT_EQ(file::rename(Path("from"), Path("disk/to"), true), -ENOSPC) << "another disk";
    EXPECT_EQ(file::getFileSize(Path("from")), 300'000);
    EXPECT_EQ(file::getFileContents(Path("disk/to")), "old");
    EXPECT_EQ(file::search(Path("disk/*"), false, true).Count(), 1);
    std::string const big(100'000, 'y');
    EXPECT_EQ(file::setFileContents(Path("disk/f"), big.c_str(), true), -ENOSPC);
    EXPECT_EQ(file::remove(Path("disk/f")), 0);

    folder_.Write("small", "new");
    EXPECT_EQ(file::rename(Path("small"), Path("disk/to"), false), -EEXIST);
    EXPECT_EQ(file::rename(Path("disk/to"), Path("moved"), false), 0);
    EXPECT_EQ(file::getFileContents(Path("moved")), "old");
    EXPECT_EQ(file::rename(Path("small"), Path("disk/to"), true), 0);
    EXPECT_EQ(file::getFileContents(Path("disk/to")), "new");
    EXPECT_EQ(Names(), "disk from moved ");
}

TEST_F(FileCopyTest, LinksLeadToWhatIsReplaced) {
    folder_.Write("from", "new");
    folder_.Write("real", "old");
    fs::create_symlink("real", folder_.PathOf("link"));
    fs::create_symlink("nowhere", folder_.PathOf("dangling"));
    EXPECT_EQ(file::copy(Path("from"), Path("link"), false, false, nullptr), 0);
    EXPECT_EQ(file::getType(Path("link")), file::Type::link);
    EXPECT_EQ(file::getFileContents(Path("real")), "new");
    EXPECT_EQ(file::copy(Path("from"), Path("dangling"), false, false, nullptr), 0);
    EXPECT_EQ(file::getFileContents(Path("dangling")), "new");
    EXPECT_EQ(Names(), "dangling from link real ");
}

TEST_F(FileCopyTest, AReplacementThatIsNotWantedVanishes) {
    folder_.Write("to", "old");
    {
        sys::ReplacementFile replacement;
        ASSERT_EQ(replacement.Create(Path("to")), 0);
        EXPECT_EQ(replacement.WriteAll("new", 3), 0);
        EXPECT_EQ(replacement.TakeOver(false), -EEXIST);
    }
    EXPECT_EQ(file::getFileContents(Path("to")), "old");
    EXPECT_EQ(Names(), "to ");
}

TEST_F(FileCopyTest, RenameReplacesOnlyWhenAsked) {
    folder_.Write("a", "A");
    folder_.Write("b", "B");
    EXPECT_EQ(file::rename(Path("a"), Path("b"), false), -EEXIST);
    EXPECT_EQ(file::getFileContents(Path("b")), "B");
    EXPECT_EQ(file::rename(Path("a"), Path("b"), true), 0);
    EXPECT_EQ(file::getFileContents(Path("b")), "A");
    EXPECT_EQ(file::rename(Path("b"), Path("c"), false), 0);
    EXPECT_EQ(file::rename(Path("b"), Path("c"), true), -ENOENT);
    EXPECT_EQ(file::rename(Path("c"), Path("no/c"), true), -ENOENT);
    fs::create_directory(folder_.PathOf("folder"));
    EXPECT_EQ(file::rename(Path("c"), Path("folder"), true), -EISDIR);
    EXPECT_EQ(file::rename(Path("folder"), Path("folder/in"), false), -EINVAL);
    EXPECT_EQ(file::rename(Path("folder"), Path("moved"), false), 0);
    EXPECT_EQ(file::remove(Path("moved")), -EISDIR) << "remove is for files";
    EXPECT_EQ(Names(), "c moved ");
}

}  // namespace
