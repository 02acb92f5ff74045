#pragma once

#include <climits>

#include "core/stream/ICopyCallback.h"

namespace support {

/// Records the last progress of a copy and cancels it after more than most bytes.
struct CopyWatcher : core::ICopyCallback {
    bool Copied(long long nowDone, long long nowTotal) override {
        done = nowDone;
        total = nowTotal;
        return done <= most;
    }

    long long most = LLONG_MAX;
    long long done = 0;
    long long total = 0;
};

}  // namespace support
