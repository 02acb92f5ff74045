#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "core/stream/FileStream.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using core::FileStream;
using Origin = core::Stream::SeekOrigin;
namespace platform = sys::platform;

unsigned const readWrite = platform::openRead | platform::openWrite;

TEST(FileStream, OneThatIsNotOpenFails) {
    FileStream stream;
    char c = 0;
    platform::FileStatus status;
    EXPECT_EQ(stream.Read(&c, 1), -EBADF);
    EXPECT_EQ(stream.WriteAll(&c, 1), -EBADF);
    EXPECT_EQ(stream.Seek(0), -EBADF);
    EXPECT_EQ(stream.Tell(), -EBADF);
    EXPECT_EQ(stream.Size(), -EBADF);
    EXPECT_EQ(stream.Sync(), -EBADF);
    EXPECT_EQ(stream.Stat(status), -EBADF);
    EXPECT_EQ(stream.Open("none", platform::openRead), -ENOENT);
    EXPECT_FALSE(stream.IsOpened());
    EXPECT_EQ(stream.Close(), 0);
}

TEST(FileStream, GoesToPositionsBeyondFourGiB) {
    support::TemporaryFolder const folder;
    FileStream stream;
    ASSERT_EQ(stream.Open(folder.PathOf("f").c_str(), readWrite | platform::openCreate), 0);
    long long const far = 5'000'000'000;
    EXPECT_EQ(stream.Seek(far), far);
    EXPECT_EQ(stream.WriteAll("end", 3), 0);
    EXPECT_EQ(stream.Size(), far + 3);
    EXPECT_EQ(stream.Seek(-3, Origin::end), far);
    char read[4] = {};
    EXPECT_EQ(stream.Read(read, 4), 3);
    EXPECT_STREQ(read, "end");
    EXPECT_EQ(stream.Seek(-far - 4, Origin::current), -EINVAL);
    EXPECT_EQ(stream.Tell(), far + 3);
    EXPECT_EQ(stream.Sync(), 0);
}

TEST(FileStream, ModesSayWhereWritesGo) {
    support::TemporaryFolder const folder;
    std::string const path = folder.Write("f", "0123456789");
    struct Row {
        unsigned mode;
        std::string expected;
    };
    for (Row const& row : {Row{platform::openWrite, "ab23456789"},
                           Row{platform::openWrite | platform::openAppend, "ab23456789ab"},
                           Row{platform::openWrite | platform::openTruncate, "ab"}}) {
        FileStream stream;
        ASSERT_EQ(stream.Open(path.c_str(), row.mode), 0);
        EXPECT_EQ(stream.WriteAll("ab", 2), 0);
        std::ifstream content(path);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(content), {}), row.expected);
    }
    FileStream stream;
    ASSERT_EQ(stream.Open(path.c_str(), platform::openRead), 0);
    EXPECT_EQ(stream.Write("x", 1), -EBADF) << "opened for reading only";
    EXPECT_EQ(stream.Read(nullptr, -1), 0);
    EXPECT_EQ(stream.Write("", 0), 0);
}

TEST(FileStream, APipeNeitherHangsNorHasASize) {
    support::TemporaryFolder const folder;
    std::string const path = folder.PathOf("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    FileStream writer;
    EXPECT_EQ(writer.Open(path.c_str(), platform::openWrite), -ENXIO) << "nobody reads";
    FileStream reader;
    ASSERT_EQ(reader.Open(path.c_str(), platform::openRead), 0);
    char c = 0;
    EXPECT_EQ(reader.Read(&c, 1), 0) << "nobody writes";
    EXPECT_EQ(reader.Size(), -ESPIPE);
    EXPECT_EQ(reader.Seek(0), -ESPIPE);
    ASSERT_EQ(writer.Open(path.c_str(), platform::openWrite), 0);
    EXPECT_EQ(reader.Read(&c, 1), -EAGAIN) << "nothing written yet";
}

}  // namespace
