#pragma once

#include "core/object/BasicClass.h"
#include "core/time/Interval.h"
#include "core/time/TimeVal.h"

namespace core {

/// A deadline on the system's millisecond tick. One thread's at a time.
class CountDownTimer : public BasicClass {
public:
    /// For Reset: keep the period.
    static constexpr unsigned long long samePeriod = ~0ULL;
    /// For Remaining: no upper bound.
    static constexpr unsigned long long unlimited = ~0ULL;

    /// Expired from the start.
    CountDownTimer();
    /// Expires ms milliseconds from now.
    explicit CountDownTimer(unsigned long long ms);
    explicit CountDownTimer(Interval const& interval);
    explicit CountDownTimer(TimeVal const& time);

    char const* ClassName() const override;

    /// Starts anew with ms milliseconds, or with the period it had for samePeriod.
    void Reset(unsigned long long ms);
    void Reset(Interval const& interval);
    void Reset(TimeVal const& time);

    /// Milliseconds since the start.
    unsigned long long Elapsed() const;
    /// Whether the time is over; always for a period of 0. Yields the processor first, so that
    /// loops which poll it do not spin.
    bool Expired() const;
    /// Milliseconds left, at least min and at most max; 0 when the time is over.
    unsigned long long Remaining(unsigned long long min, unsigned long long max) const;
    /// The same in 32 bits, as waits take it.
    unsigned int RemainingTimeout(unsigned int min, unsigned int max) const;

    /// Sleeps until the time is over or the period has been set to 0.
    void WaitForIt();

private:
    unsigned long long duration_ = 0;
    unsigned long long start_ = 0;
    unsigned long long deadline_;
};

}  // namespace core
