#include <gtest/gtest.h>

#include <cerrno>

#include "core/stream/FileStream.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/system.h"

namespace {

using core::FileStream;
using Origin = core::Stream::SeekOrigin;
using FileStreamTest = support::DirectoryTest;
namespace platform = sys::platform;

TEST_F(FileStreamTest, FailsIfNotOpen) {
    FileStream stream;
    EXPECT_EQ(stream.Read(nullptr, 1), -EBADF);
    EXPECT_EQ(stream.WriteAll("", 1), -EBADF);
    EXPECT_EQ(stream.Tell(), -EBADF);
    EXPECT_EQ(stream.Open(Path("none"), platform::openRead), -ENOENT);
    EXPECT_FALSE(stream.IsOpened());
    EXPECT_EQ(stream.Close(), 0);
    EXPECT_EQ(stream.Size() + stream.Sync() + stream.Truncate(0), -3 * EBADF);
    EXPECT_EQ(std::string(stream.ClassName()) + core::HandleStream().ClassName(),
              "FileStreamHandleStream");
}

TEST_F(FileStreamTest, SeeksBeyondFourGiB) {
    unsigned const mode = platform::openRead | platform::openWrite | platform::openCreate;
    long const before = support::openDescriptors();
    {
        FileStream closes;
        EXPECT_EQ(closes.Open(Path("f"), mode) + closes.Open(Path("f"), mode), 0);
    }
    EXPECT_EQ(support::openDescriptors(), before);
    FileStream stream;
    ASSERT_EQ(stream.Open(Path("f"), mode), 0);
    long long const far = 5'000'000'000;
    EXPECT_EQ(stream.Seek(far), far);
    EXPECT_EQ(stream.WriteAll("end", 3), 0);
    EXPECT_EQ(stream.Size(), far + 3);
    EXPECT_EQ(stream.Seek(-3, Origin::end), far);
    char read[4] = {};
    EXPECT_EQ(stream.Read(read, 4), 3);
    EXPECT_STREQ(read, "end");
    EXPECT_EQ(stream.Truncate(far) + stream.Sync() + stream.Size(), far);
}

}  // namespace
