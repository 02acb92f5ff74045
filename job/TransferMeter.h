#pragma once

#include <deque>

namespace job {

/// The speed of a transfer over the last seconds. Times are in milliseconds on one clock.
class TransferMeter {
public:
    /// Begins a transfer.
    void Start(long long now);
    /// sent is the number of bytes by now.
    void Add(long long now, int sent);

    long long StartTime() const { return start_; }
    /// Returns the bytes per second over the last five seconds.
    int Rate() const;
    /// Whether a second has passed since the start, or since this was last true.
    bool IsReportDue(long long now);

private:
    struct Sample {
        long long time;
        int sent;
    };
    std::deque<Sample> samples_;
    long long start_ = 0;
    long long lastReport_ = 0;
};

/// Returns bytes per second, without overflow.
[[nodiscard]] int rateOf(long long bytes, long long milliseconds);

}  // namespace job
