#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <string>

#include "core/stream/MemoryStream.h"
#include "core/text/StringArray.h"

namespace {

using core::Buffer;
using core::MemoryStream;
using Origin = core::Stream::SeekOrigin;

TEST(MemoryStream, WritesOverAndBehindWhatIsThere) {
    MemoryStream stream(Buffer("abcd", 4));
    EXPECT_EQ(stream.Seek(2), 2);
    EXPECT_EQ(stream.Write("XYZ", 3), 3);
    EXPECT_EQ(stream.Content(), Buffer("abXYZ", 5));
    EXPECT_EQ(stream.Seek(2, Origin::current), 7);
    char c = '?';
    EXPECT_EQ(stream.Read(&c, 1), 0) << "past the end";
    EXPECT_EQ(stream.Size(), 5) << "seeking alone adds nothing";
    EXPECT_EQ(stream.Write("!", 1), 1);
    EXPECT_EQ(stream.Content(), Buffer("abXYZ\0\0!", 8));

    char read[9] = {};
    EXPECT_EQ(stream.Seek(0), 0);
    EXPECT_EQ(stream.Read(read, 3), 3);
    EXPECT_EQ(stream.Read(read, 9), 5);
    EXPECT_EQ(Buffer(read, 5), Buffer("YZ\0\0!", 5));
    stream.Clear();
    EXPECT_EQ(stream.Size() + stream.Tell(), 0);
}

TEST(MemoryStream, RefusesPositionsAndCountsThatAreNone) {
    MemoryStream stream(Buffer("abcd", 4));
    EXPECT_EQ(stream.Seek(-1, Origin::end), 3);
    EXPECT_EQ(stream.Seek(-4, Origin::current), -EINVAL);
    EXPECT_EQ(stream.Seek(LLONG_MIN, Origin::current), -EINVAL);
    EXPECT_EQ(stream.Seek(LLONG_MAX, Origin::current), -EOVERFLOW);
    EXPECT_EQ(stream.Tell(), 3) << "a refused position moves nothing";
    char c = '?';
    EXPECT_EQ(stream.Read(&c, 0) + stream.Read(&c, -1), 0);
    EXPECT_EQ(stream.Write(&c, 0) + stream.Write(&c, INT_MIN), 0);
    EXPECT_EQ(c, '?');
    EXPECT_EQ(stream.Seek(LLONG_MAX), LLONG_MAX);
    EXPECT_EQ(stream.Read(&c, 1), 0);
    EXPECT_EQ(stream.Write(&c, 1), -EFBIG);
    EXPECT_EQ(stream.Content(), Buffer("abcd", 4));
}

TEST(MemoryStream, HoldsAList) {
    core::StringArray list;
    list.Add("a=1");
    list.Add("%1 \x80");
    MemoryStream stream;
    EXPECT_TRUE(list.SaveTo(&stream));
    EXPECT_EQ(stream.Seek(0), 0);
    core::StringArray again;
    EXPECT_TRUE(again.LoadFrom(&stream));
    EXPECT_EQ(again.AsString(), list.AsString());
}

}  // namespace
