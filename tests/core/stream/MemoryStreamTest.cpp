#include <gtest/gtest.h>

#include <cerrno>
#include <climits>

#include "core/stream/MemoryStream.h"

namespace {

using namespace core;
using Origin = Stream::SeekOrigin;

/// Has no positions.
class Pipe : public Stream {
    int Read(void*, int) override { return 0; }
    int Write(void const*, int count) override { return count; }
};

TEST(Stream, WithoutPositionsReturnsESPIPE) {
    Pipe pipe;
    EXPECT_EQ(pipe.Seek(0) + pipe.Size() + pipe.Sync(), -2 * ESPIPE);
    EXPECT_EQ(MemoryStream(Buffer("\0", 1)).CopyTo(pipe, {.sparse = true}), -ESPIPE);
    EXPECT_EQ(std::string(pipe.ClassName()) + MemoryStream().ClassName(), "StreamMemoryStream");
}

TEST(MemoryStream, ReadsAndWritesAtAnyPosition) {
    MemoryStream stream(Buffer("abcd", 4));
    EXPECT_EQ(stream.Seek(2), 2);
    EXPECT_EQ(stream.Write("XYZ", 3), 3);
    EXPECT_EQ(stream.Seek(2, Origin::current), 7);
    char read[9] = {};
    EXPECT_EQ(stream.Read(read, 1), 0) << "past the end";
    EXPECT_EQ(stream.Write("!", 1), 1);
    EXPECT_EQ(stream.Content(), Buffer("abXYZ\0\0!", 8));
    EXPECT_EQ(stream.Seek(-5, Origin::end), 3);
    EXPECT_EQ(stream.Read(read, 9), 5);
    EXPECT_EQ(Buffer(read, 5), Buffer("YZ\0\0!", 5));
    EXPECT_EQ(stream.Seek(LLONG_MIN, Origin::current), -EINVAL);
    EXPECT_EQ(stream.Seek(LLONG_MAX, Origin::current), -EOVERFLOW);
    EXPECT_EQ(stream.Tell(), 8) << "an invalid position changes nothing";
    EXPECT_EQ(stream.Read(read, -1) + stream.Write(read, INT_MIN), 0);
    EXPECT_EQ(stream.Seek(LLONG_MAX), LLONG_MAX);
    EXPECT_EQ(stream.Write("x", 1), -EFBIG);
    EXPECT_EQ(stream.Size(), 8);
    stream.Clear();
    EXPECT_EQ(stream.Size() + stream.Tell(), 0);
}

}  // namespace
