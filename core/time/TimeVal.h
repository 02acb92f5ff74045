#pragma once

#include <compare>

#include "core/time/Interval.h"

namespace core {

/// A duration in seconds and microseconds, as in operating system calls. The microseconds are
/// always 0 to 999999: a negative duration has negative seconds.
class TimeVal {
public:
    TimeVal() = default;
    /// Carries microseconds outside 0 to 999999 into the seconds.
    TimeVal(long long seconds, long long microseconds);
    explicit TimeVal(Interval const& interval);

    /// Returns whole milliseconds, rounded down and saturated at the 64-bit limits.
    long long GetMilliseconds() const;
    Interval ToInterval() const { return Interval(GetMilliseconds()); }
    auto operator<=>(TimeVal const& other) const = default;

private:
    long long seconds_ = 0;
    int microseconds_ = 0;
};

}  // namespace core
