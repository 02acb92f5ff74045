#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <filesystem>

#include "sys/AtomicFile.h"
#include "sys/FileDirectory.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/posix/SmallDisk.h"
#include "tests/support/posix/Unprivileged.h"
#include "tests/sys/ListedDirectoryTest.h"

namespace {

using PosixFileTest = ListedDirectoryTest;
using sys::file::Type;
namespace file = sys::file;
namespace fs = std::filesystem;

TEST_F(PosixFileTest, DistinguishesTypesOfFiles) {
    ASSERT_EQ(mkfifo(Path("pipe").getCString(), 0600), 0);
    fs::create_symlink("nowhere", directory_.PathOf("dangling"));
    fs::create_symlink("loop", directory_.PathOf("loop"));
    fs::create_symlink("f", directory_.PathOf("link"));
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

TEST_F(PosixFileTest, CreatesOneDirectoryOrAllParents) {
    directory_.Write("file", "");
    fs::create_symlink("nowhere", directory_.PathOf("dangling"));
    core::String const slashes = core::String::OfChar('/', 1'000'000) + "a";
    expectCreated({Created{Path("new"), 0, 0}, Created{Path("a/b/c"), -ENOENT, 0},
                   Created{Path("a//d///"), 0, 0}, Created{Path("x/../y"), -ENOENT, 0},
                   Created{Path("file"), -EEXIST, -ENOTDIR},
                   Created{Path("file/x"), -ENOTDIR, -ENOTDIR},
                   Created{Path("dangling"), -EEXIST, -EEXIST}, Created{"", -ENOENT, -ENOENT},
                   Created{"/", -EEXIST, 0}, Created{slashes, -ENAMETOOLONG, -ENAMETOOLONG}});
    EXPECT_EQ(file::createPathOfFile("file"), 0) << "the working directory exists";
    ASSERT_EQ(sys::dir::change(Path("new")), 0);
    EXPECT_EQ(sys::dir::current(), fs::canonical(directory_.PathOf("new")).c_str());
    EXPECT_EQ(sys::dir::change("../file"), -ENOTDIR);
    EXPECT_EQ(sys::dir::create("a", true), 0);
    EXPECT_TRUE(file::isDirectory("a"));
    fs::remove_all(directory_.PathOf("new"));
    EXPECT_EQ(sys::dir::current(), "");
}

TEST_F(PosixFileTest, CopiesPermissionsAndMakesHolesIfRequested) {
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

TEST_F(PosixFileTest, FailedCopiesChangeNothing) {
    directory_.Write("from", std::string(300'000, 'x'));
    directory_.Write("to", "old");
    fs::create_directory(directory_.PathOf("directory"));
    fs::create_symlink("loop", directory_.PathOf("loop"));
    ASSERT_EQ(mkfifo(Path("pipe").getCString(), 0600), 0);
    core::String const names = Names();
    using Row = std::tuple<core::String, core::String, int>;
    for (auto const& [from, to, expected] :
         {Row{Path("none"), Path("to"), -ENOENT}, Row{Path("directory"), Path("to"), -EISDIR},
          Row{Path("loop"), Path("to"), -ELOOP}, Row{Path("pipe"), Path("to"), -ENOTSUP},
          Row{Path("from"), Path("loop"), -ELOOP}, Row{Path("from"), Path("pipe"), -ENOTSUP},
          Row{Path("from"), "/dev/full", -ENOTSUP}, Row{Path("from"), Path("no/to"), -ENOENT},
          Row{Path("from"), Path("to/x"), -ENOTDIR}, Row{Path("from"), "", -ENOENT},
          Row{Path("from"), Path("directory"), -EISDIR},
          Row{Path("from"), Path("to"), -ECANCELED}}) {
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

TEST_F(PosixFileTest, ReportsAFullDiskAndLeavesNothing) {
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
        << "not -ENOSPC: nothing is copied";
    EXPECT_EQ(Names(), "big disk disk/to ");
    fs::create_directory(directory_.PathOf("disk/directory"));
    EXPECT_EQ(file::rename(Path("disk/directory"), Path("moved"), false), -EXDEV);
    EXPECT_EQ(file::rename(Path("disk/to"), Path("moved"), false), 0) << "to another disk";
    EXPECT_EQ(file::getFileContents(Path("moved")), "old");
    EXPECT_EQ(Names(), "big disk disk/directory moved ");
}

TEST_F(PosixFileTest, CreatesAtomicFilesWithTheirPermissions) {
    sys::platform::ConfinedDirectory directory;
    ASSERT_EQ(directory.Open(Path("").getCString()), 0);
    directory_.Write("old", "");
    chmod(Path("old").getCString(), 0666);
    mode_t const before = umask(027);
    sys::AtomicFile file;
    std::string modes;
    for (char const* const name : {"owned", "old", "new"}) {
        int const created = name == std::string("owned") ? file.Create(Path(name))
                                                         : file.CreateConfined(directory, name);
        ASSERT_EQ(created, 0);
        ASSERT_EQ(file.Commit(sys::AtomicFile::Existing::replace, sys::AtomicFile::Durable::no), 0);
        struct stat status {};
        stat(Path(name).getCString(), &status);
        modes += std::to_string(status.st_mode & 0777) + " ";
    }
    umask(before);
    EXPECT_EQ(modes, "384 438 416 ") << "0600, that of the replaced file, 0666 less the umask";
}

TEST_F(PosixFileTest, CopiesToTheTargetsOfLinks) {
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

class PosixSearchTest : public ListedDirectoryTest {
protected:
    PosixSearchTest() {
        fs::create_directories(directory_.PathOf("B/deep"));
        for (char const* name : {"a.txt", "B/b.txt", "B/deep/c.txt", ".d.txt", "\xc3\xa4"}) {
            directory_.Write(name, name);
        }
        fs::create_directory_symlink("..", directory_.PathOf("B/up"));
        fs::create_symlink("nowhere", directory_.PathOf("lost"));
        fs::resize_file(directory_.PathOf("a.txt"), 5'000'000'000);
    }
};

TEST_F(PosixSearchTest, SortsByName) {
    EXPECT_EQ(Found(Path("*"), false, false), ".d.txt a.txt lost \xc3\xa4 ");
    EXPECT_EQ(Found(Path("*.txt"), true, true), ".d.txt B/b.txt B/deep/c.txt a.txt ");
    EXPECT_EQ(Found(Path("?"), false, true), "B ");
    EXPECT_EQ(Found(Path("B/*"), true, true), "B/b.txt B/deep B/deep/c.txt B/up ");
    EXPECT_EQ(Found(Path("B/*"), false, false), "B/b.txt ");
    for (char const* nothing : {"none*", "none/*", "a.txt/*", "B/", "*/b.txt"}) {
        EXPECT_EQ(Found(Path(nothing), true, true), "") << nothing;
    }
    ASSERT_EQ(sys::dir::change(Path("B")), 0);
    EXPECT_EQ(Found("*.txt", true, false), "b.txt deep/c.txt ");
    chmod(Path("B/deep").getCString(), 0);
    support::Unprivileged const unprivileged;
    EXPECT_EQ(Found("*.txt", true, false), "b.txt ") << "skips unreadable directories";
}

TEST_F(PosixSearchTest, ListsADirectory) {
    core::FileDirectory directory;
    EXPECT_EQ(directory.Refresh(), -EBADF);
    ASSERT_EQ(directory.Open(Path(""), false), 0);
    using Row = std::pair<char const*, long long>;
    int count = 0;
    for (auto const& [name, size] : {Row{".d.txt", 6}, Row{"B", 0}, Row{"a.txt", 5'000'000'000},
                                     Row{"lost", -ENOENT}, Row{"\xc3\xa4", 2}}) {
        EXPECT_EQ(directory.GetSize(count), size) << name;
        EXPECT_EQ(directory.GetPath(count++), Path(name));
    }
    EXPECT_EQ(directory.Count(), count);
    EXPECT_EQ(directory.GetPath(count) + directory.GetPath(-1), "");
    EXPECT_EQ(directory.GetSize(count), -EINVAL);
    directory_.Write("more", "");
    EXPECT_EQ(directory.Refresh(), 0);
    EXPECT_EQ(directory.Count(), count + 1);
    EXPECT_EQ(directory.ScanDir(Path("B"), "*.txt"), 0);
    EXPECT_EQ(directory.GetPath(0), Path("B/b.txt"));
    EXPECT_EQ(directory.GetSize(0), 7);
    ASSERT_EQ(directory.Open(Path("B"), true), 0);
    fs::remove_all(directory_.PathOf("B"));
    EXPECT_EQ(directory.Refresh(), -ENOENT);
    EXPECT_EQ(directory.Count(), 4) << "the list is unchanged";
    EXPECT_EQ(directory.Open(Path("a.txt"), false), -ENOTDIR);
    EXPECT_EQ(directory.Count() + directory.Refresh(), -EBADF);
    EXPECT_STREQ(directory.ClassName(), "FileDirectory");
}

}  // namespace
