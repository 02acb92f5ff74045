#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "core/stream/FileStream.h"
#include "core/stream/MemoryStream.h"
#include "tests/support/CopyWatcher.h"

namespace {

using core::Buffer;
using core::MemoryStream;
using support::CopyWatcher;

int const piece = 0x10000;

/// Memory that moves few bytes a call and fails behind a number of them, with 0 or with an error.
class FrailStream : public MemoryStream {
public:
    FrailStream(Buffer const& content, int left, int failure)
        : MemoryStream(content), left_(left), failure_(failure) {}

    int Read(void* buffer, int count) override {
        return take(count, [&](int few) { return MemoryStream::Read(buffer, few); });
    }
    int Write(void const* data, int count) override {
        return take(count, [&](int few) { return MemoryStream::Write(data, few); });
    }
    int Sync() override { return -EIO; }

private:
    template <class Move>
    int take(int count, Move move) {
        if (left_ < 1) {
            return failure_;
        }
        int const moved = move(std::min({count, left_, 1000}));
        left_ -= moved;
        return moved;
    }

    int left_;
    int failure_;
};

/// A stream that knows neither position nor size.
class Pipe : public core::Stream {
public:
    int Read(void* /*buffer*/, int /*count*/) override { return 0; }
    int Write(void const* /*data*/, int count) override { return count; }
};

Buffer bytes(int size) {
    std::string text;
    for (int i = 0; i < size; ++i) {
        text += static_cast<char>(i % 251);
    }
    return Buffer(text.data(), size);
}

TEST(Copy, IsTheSourceToTheByteWhateverTheFlags) {
    for (int size : {0, 1, piece - 1, piece, piece + 1, 3 * piece}) {
        for (bool const blank : {false, true}) {
            for (bool const sparse : {false, true}) {
                Buffer content = bytes(blank ? 0 : size);
                content.SetSize(size);
                MemoryStream source(content);
                MemoryStream target;
                CopyWatcher watcher;
                EXPECT_EQ(source.CopyTo(target, sparse, true, &watcher), size);
                EXPECT_EQ(target.Content(), content) << size << (blank ? " blank" : "");
                EXPECT_EQ(watcher.steps.front(), 0);
                EXPECT_EQ(watcher.steps.back(), size);
                EXPECT_TRUE(std::is_sorted(watcher.steps.begin(), watcher.steps.end()));
                EXPECT_EQ(watcher.lastTotal, size);
            }
        }
    }
}

TEST(Copy, KeepsDataBetweenHoles) {
    Buffer content;
    content.SetSize(2 * piece);
    content.Append(bytes(5));
    content.SetSize(5 * piece + 7);
    MemoryStream source(content);
    MemoryStream target;
    EXPECT_EQ(source.CopyTo(target, true, false, nullptr), content.GetSize());
    EXPECT_EQ(target.Content(), content);
}

TEST(Copy, StartsAtThePositionsAndGoesOnAfterShortMoves) {
    FrailStream source(bytes(5000), 6000, 0);
    MemoryStream target(Buffer("head", 4));
    source.Seek(10);
    target.Seek(0, core::Stream::SeekOrigin::end);
    CopyWatcher watcher;
    EXPECT_EQ(source.CopyTo(target, false, false, &watcher), 4990);
    EXPECT_EQ(watcher.lastTotal, 4990);
    Buffer expected("head", 4);
    expected.Append(bytes(5000).GetData() + 10, 4990);
    EXPECT_EQ(target.Content(), expected);
}

TEST(Copy, ReturnsTheErrorOfTheStepThatFailed) {
    Buffer const content = bytes(2 * piece);
    MemoryStream good(content);
    for (int const failure : {-ENOSPC, 0}) {
        FrailStream full(Buffer(), 3500, failure);
        good.Seek(0);
        EXPECT_EQ(good.CopyTo(full, false, false, nullptr), failure == 0 ? -EIO : failure);
        EXPECT_EQ(full.Size(), 3500);
    }
    FrailStream broken(content, 2500, -EIO);
    MemoryStream target;
    EXPECT_EQ(broken.CopyTo(target, false, false, nullptr), -EIO);
    FrailStream unsafe(Buffer(), 10 * piece, 0);
    good.Seek(0);
    EXPECT_EQ(good.CopyTo(unsafe, false, true, nullptr), -EIO) << "its Sync fails";

    Pipe pipe;
    CopyWatcher watcher;
    EXPECT_EQ(pipe.CopyTo(target, false, false, &watcher), 0);
    EXPECT_EQ(watcher.lastTotal, -1);
    MemoryStream blank(Buffer("\0\0", 2));
    EXPECT_EQ(blank.CopyTo(pipe, true, false, nullptr), -ESPIPE) << "no holes in a pipe";
    core::FileStream closed;
    EXPECT_EQ(closed.CopyTo(target, false, false, nullptr), -EBADF);
}

TEST(Copy, StopsWhenItsWatcherSaysSo) {
    MemoryStream source(bytes(3 * piece));
    for (long long const most : {-1, 0, piece}) {
        MemoryStream target;
        CopyWatcher watcher(most);
        source.Seek(0);
        EXPECT_EQ(source.CopyTo(target, false, false, &watcher), -ECANCELED);
        EXPECT_EQ(target.Size(), watcher.steps.back());
        EXPECT_LE(target.Size(), most + piece);
    }
}

}  // namespace
