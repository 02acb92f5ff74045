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

int const chunk = 0x10000;

/// Accepts a few bytes a call, none after the first left bytes, and cannot sync.
class LimitedStream : public MemoryStream {
public:
    LimitedStream(int left, int failure) : left_(left), failure_(failure) {}
    int Write(void const* data, int count) override {
        int const written =
            left_ > 0 ? MemoryStream::Write(data, std::min({count, left_, 1000})) : 0;
        left_ -= written;
        return written > 0 ? written : failure_;
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

TEST(Copy, EqualsTheSourceWithAndWithoutHoles) {
    for (int const size : {0, 1, chunk - 1, chunk, chunk + 1, 5 * chunk}) {
        for (int const nulFrom : {0, 1, 2 * chunk, 6 * chunk}) {
            for (bool const sparse : {false, true}) {
                Buffer content = bytes(std::min(size, nulFrom));
                content.SetSize(size);
                MemoryStream source(content);
                MemoryStream target;
                CopyWatcher watcher;
                EXPECT_EQ(source.CopyTo(target, {sparse, true, &watcher}), size);
                EXPECT_EQ(target.Content(), content) << size << ", NUL from " << nulFrom;
                EXPECT_EQ(watcher.done, size);
                EXPECT_EQ(watcher.total, size);
            }
        }
    }
}

TEST(Copy, ReturnsTheErrorOfTheFailedStep) {
    MemoryStream source(bytes(2 * chunk));
    for (int const failure : {-ENOSPC, 0}) {
        LimitedStream full(3500, failure);
        source.Seek(0);
        EXPECT_EQ(source.CopyTo(full), failure == 0 ? -EIO : failure);
        EXPECT_EQ(full.Content(), bytes(3500));
        EXPECT_EQ(source.WriteTo(full), failure == 0 ? -1 : failure);
    }
    LimitedStream unsafe(INT_MAX, 0);
    FileStream closed;
    EXPECT_EQ(closed.WriteTo(unsafe) + closed.CopyTo(unsafe, {.sparse = true, .sync = true}),
              -2 * EBADF);
    source.Seek(0);
    EXPECT_EQ(source.WriteTo(unsafe), 2 * chunk);
    EXPECT_EQ(unsafe.Content(), source.Content());
    source.Seek(0);
    EXPECT_EQ(source.CopyTo(unsafe, {.sync = true}), -EIO) << "Sync fails";
    for (long long const most : {-1, 0, chunk}) {
        MemoryStream target;
        CopyWatcher watcher;
        watcher.most = most;
        source.Seek(0);
        EXPECT_EQ(source.CopyTo(target, {.callback = &watcher}), -ECANCELED);
        EXPECT_EQ(target.Size(), watcher.done);
    }
}

}  // namespace
