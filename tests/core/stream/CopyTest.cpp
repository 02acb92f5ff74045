#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "core/stream/FileStream.h"
#include "core/stream/MemoryStream.h"
#include "tests/support/CopyWatcher.h"

namespace {

using namespace core;
using support::CopyWatcher;

int const piece = 0x10000;

/// Memory that moves few bytes a call and takes none behind a number of them.
class FrailStream : public MemoryStream {
public:
    FrailStream(int left, int failure) : left_(left), failure_(failure) {}
    int Write(void const* data, int count) override {
        int const moved = left_ > 0 ? MemoryStream::Write(data, std::min({count, left_, 1000})) : 0;
        left_ -= moved;
        return moved > 0 ? moved : failure_;
    }
    int Sync() override { return -EIO; }

private:
    int left_;
    int failure_;
};

Buffer bytes(int size) {
    Buffer result;
    result.SetSize(size);
    for (int i = 0; i < size; ++i) {
        result.GetData()[i] = static_cast<unsigned char>(i % 251);
    }
    return result;
}

TEST(Copy, IsTheSourceToTheByteWithHolesAndWithout) {
    for (int const size : {0, 1, piece - 1, piece, piece + 1, 5 * piece}) {
        for (int const blankFrom : {0, 1, 2 * piece, 6 * piece}) {
            for (bool const sparse : {false, true}) {
                Buffer content = bytes(std::min(size, blankFrom));
                content.SetSize(size);
                MemoryStream source(content);
                MemoryStream target;
                CopyWatcher watcher;
                EXPECT_EQ(source.CopyTo(target, {sparse, true, &watcher}), size);
                EXPECT_EQ(target.Content(), content) << size << ", blank from " << blankFrom;
                EXPECT_EQ(watcher.done, size);
                EXPECT_EQ(watcher.total, size);
            }
        }
    }
}

TEST(Copy, ReturnsTheErrorOfTheStepThatFailed) {
    MemoryStream source(bytes(2 * piece));
    for (int const failure : {-ENOSPC, 0}) {
        FrailStream full(3500, failure);
        source.Seek(0);
        EXPECT_EQ(source.CopyTo(full), failure == 0 ? -EIO : failure);
        EXPECT_EQ(full.Content(), bytes(3500));
        EXPECT_EQ(source.WriteTo(full), failure == 0 ? -1 : failure);
    }
    FrailStream unsafe(INT_MAX, 0);
    FileStream closed;
    EXPECT_EQ(closed.WriteTo(unsafe) + closed.CopyTo(unsafe, {.sparse = true, .sync = true}),
              -2 * EBADF);
    source.Seek(0);
    EXPECT_EQ(source.WriteTo(unsafe), 2 * piece);
    EXPECT_EQ(unsafe.Content(), source.Content());
    source.Seek(0);
    EXPECT_EQ(source.CopyTo(unsafe, {.sync = true}), -EIO) << "its Sync fails";
    for (long long const most : {-1, 0, piece}) {
        MemoryStream target;
        CopyWatcher watcher;
        watcher.most = most;
        source.Seek(0);
        EXPECT_EQ(source.CopyTo(target, {.callback = &watcher}), -ECANCELED);
        EXPECT_EQ(target.Size(), watcher.done);
    }
}

}  // namespace
