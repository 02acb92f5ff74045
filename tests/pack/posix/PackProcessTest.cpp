#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/core/archive/golden.h"
#include "tests/pack/packing.h"

namespace {

using support::contentOf;
using support::Lines;

class PackProcess : public support::PackTest {
protected:
    /// The first line after the banner of a run in a shell with a limit.
    std::string Limited(std::string const& limit, std::string const& arguments) const {
        support::Ran const ran = support::run(limit + "; exec " RAVELINK_PACK " " + At(arguments));
        EXPECT_EQ(ran.status, 1) << limit;
        return ran.lines.size() > 1 ? support::replaced(ran.lines[1], folder_.Path() + "/", "@")
                                    : "";
    }
};

TEST_F(PackProcess, EndsByTheSignalAndLeavesNothing) {
    folder_.Write("big", "");
    std::filesystem::resize_file(At("@big"), 1ULL << 40);
    folder_.Write("m.conf", "file.count = 1\nfile[0].origin = big\n");
    std::string const manifest = At("@m.conf");
    std::string const archive = At("@a.rvl");
    for (int const number : {SIGINT, SIGTERM}) {
        pid_t const process = fork();
        if (process == 0) {
            // What the disk loses at the most, should the signal not arrive.
            rlimit const limit{1ULL << 34, 1ULL << 34};
            setrlimit(RLIMIT_FSIZE, &limit);
            if (std::freopen("/dev/null", "w", stdout) != nullptr) {
                execl(RAVELINK_PACK, RAVELINK_PACK, "-b", manifest.c_str(), "-o", archive.c_str(),
                      nullptr);
            }
            _exit(99);
        }
        while (FilesBelow("").size() < 3 && waitpid(process, nullptr, WNOHANG) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_EQ(kill(process, number), 0);
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_EQ(FilesBelow(""), (Lines{"big", "m.conf"}));
    }
}

TEST_F(PackProcess, ReportsExhaustedResources) {
    folder_.Write("f", std::string(100'000, 'f'));
    folder_.Write("m.conf", "file.count = 1\nfile[0].origin = f\n");
    EXPECT_EQ(Limited("ulimit -f 20", "-b @m.conf -o @a.rvl"),
              "*** Archive not writable: \"@a.rvl\": File too large");
    EXPECT_EQ(Pack("-b @m.conf -o @a.rvl", 0).size(), 1u);
    EXPECT_EQ(Limited("ulimit -f 20", "-x @a.rvl -d @@"),
              "*** File not unpacked: file[0], \"f\": it is there already");
    EXPECT_EQ(Limited("ulimit -f 20", "-x @a.rvl -d @@ -f"),
              "*** File not unpacked: file[0], \"f\": File too large");
    EXPECT_EQ(FilesBelow(""), (Lines{"a.rvl", "f", "m.conf"}));
#ifndef RAVELINK_SANITIZED  // they need more memory than any limit
    std::string lines;
    for (int i = 0; i < 200'000; ++i) {
        lines += "name" + std::to_string(i) + " = value\n";
    }
    folder_.Write("m.conf", lines);
    EXPECT_EQ(Limited("ulimit -v 30000", "-b @m.conf -o @a.rvl"),
              "*** Out of memory: The system has no more memory for the program");
#endif
}

TEST_F(PackProcess, ReplacesRegularFilesOnlyAndKeepsTheirPermissions) {
    folder_.Write("secret", "old");
    ASSERT_EQ(chmod(At("@secret").c_str(), 0640), 0);
    ASSERT_EQ(mkfifo(At("@pipe").c_str(), 0600), 0);
    golden::Archive archive;
    archive.files = {{u"secret", u"", u"", u"", u"", 0, 0, "new"}};
    folder_.Write("a.rvl", bytesOf(archive));
    struct stat found {};
    ASSERT_EQ(umask(0077), 0022u);
    EXPECT_EQ(Pack("-x @a.rvl -d @@ -f", 0), Lines{"- Unpacked: 1 file"});
    umask(0022);
    EXPECT_EQ(contentOf(At("@secret")), "new");
    ASSERT_EQ(stat(At("@secret").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 07777, 0640u);
    archive.files[0].name = u"pipe";
    folder_.Write("a.rvl", bytesOf(archive));
    EXPECT_EQ(
        Errors("-x @a.rvl -d @@ -f"),
        Lines{"File not unpacked: file[0], \"pipe\": it is there already and is not a regular "
              "file"});
}

}  // namespace
