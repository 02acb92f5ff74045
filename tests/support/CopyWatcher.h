#pragma once

#include <climits>
#include <vector>

#include "core/stream/ICopyCallback.h"

namespace support {

/// Records the progress of a copy and cancels it once more than a number of bytes are done.
class CopyWatcher : public core::ICopyCallback {
public:
    explicit CopyWatcher(long long most = LLONG_MAX) : most_(most) {}

    bool Copied(long long done, long long total) override {
        steps.push_back(done);
        lastTotal = total;
        return done <= most_;
    }

    std::vector<long long> steps;
    long long lastTotal = 0;

private:
    long long most_;
};

}  // namespace support
