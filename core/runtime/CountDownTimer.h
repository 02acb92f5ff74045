#pragma once

#include "core/object/BasicClass.h"
#include "core/time/Interval.h"
#include "core/time/TimeVal.h"

namespace core {

/// A deadline on the system's millisecond tick. Not thread-safe.
class CountDownTimer : public BasicClass {
public:
    /// Argument of Reset: keep the period.
    static constexpr unsigned long long samePeriod = ~0ULL;
    /// Argument of Remaining: no upper bound.
    static constexpr unsigned long long unlimited = ~0ULL;

    /// Already expired.
    CountDownTimer();
    /// Expires ms milliseconds from now.
    explicit CountDownTimer(unsigned long long ms);
    explicit CountDownTimer(Interval const& interval);
    explicit CountDownTimer(TimeVal const& time);

    char const* ClassName() const override;

    /// Restarts with a period of ms milliseconds, or with the same period for samePeriod.
    void Reset(unsigned long long ms);
    void Reset(Interval const& interval);
    void Reset(TimeVal const& time);

    /// Returns the milliseconds since the start.
    unsigned long long Elapsed() const;
    /// Whether the deadline has passed; always true for a period of 0. Yields the processor first,
    /// so that polling loops do not spin.
    bool Expired() const;
    /// Returns the milliseconds left, clamped to min and max; 0, not min, after the deadline.
    unsigned long long Remaining(unsigned long long min, unsigned long long max) const;
    /// The same in 32 bits, for the timeouts of waits.
    unsigned int RemainingTimeout(unsigned int min, unsigned int max) const;

    /// Sleeps until the deadline, or until Reset(0).
    void WaitForIt();

private:
    unsigned long long duration_ = 0;
    unsigned long long start_ = 0;
    unsigned long long deadline_;
};

}  // namespace core
