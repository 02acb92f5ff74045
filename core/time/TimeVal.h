#pragma once

#include <compare>

#include "core/time/Interval.h"

namespace core {

/// A length of time in seconds and microseconds, as system calls take it. The microseconds are
/// always 0 to 999999: a negative length has negative seconds.
class TimeVal {
public:
    TimeVal() = default;
    /// Microseconds outside 0..999999 are carried into the seconds.
    TimeVal(long long seconds, long long microseconds);
    explicit TimeVal(Interval const& interval);

    long long GetSeconds() const { return seconds_; }
    int GetMicroseconds() const { return microseconds_; }
    /// In whole milliseconds, rounded down and cut to the 64-bit range.
    long long GetMilliseconds() const;
    Interval ToInterval() const { return Interval(GetMilliseconds()); }
    auto operator<=>(TimeVal const& other) const = default;

private:
    long long seconds_ = 0;
    int microseconds_ = 0;
};

}  // namespace core
