#pragma once

#include <deque>

namespace program {

/// The speed of a transfer, or of other work on bytes, over the last seconds. Times are in
/// milliseconds on one clock.
class TransferMeter {
public:
    /// Begins a transfer.
    void Start(long long now);
    /// done is the number of bytes by now.
    void Add(long long now, long long done);

    long long StartTime() const { return start_; }
    /// Returns the bytes per second over the last five seconds.
    long long Rate() const;
    /// Whether a second has passed since the start, or since this was last true.
    bool IsReportDue(long long now);

private:
    struct Sample {
        long long time;
        long long done;
    };
    std::deque<Sample> samples_;
    long long start_ = 0;
    long long lastReport_ = 0;
};

/// Returns the part of total that is done, from 0 to 100 per cent.
[[nodiscard]] int percentOf(long long done, long long total);
/// Returns bytes per second, without overflow.
[[nodiscard]] long long rateOf(long long bytes, long long milliseconds);

}  // namespace program
