#pragma once

#include <compare>

#include "core/text/String.h"

namespace core {

/// A duration in milliseconds.
class Interval {
public:
    /// The text forms. A number above 1 appends an "s" to its unit; 0, 1 and negative numbers do
    /// not.
    enum class CEStringFormat : int {
        /// One unit: the first of hours (modulo 24), minutes (modulo 60) and seconds (modulo 60)
        /// that is not 0. If all are 0: days, or milliseconds unless the duration is whole days.
        /// Values without an enumerator mean the same.
        automatic = 0,
        // One unit, rounded to the nearest number.
        milliseconds = 1,
        seconds = 2,
        minutes = 3,
        hours = 4,
        days = 5,
        /// "1 day, 2 hours, 5 seconds": omits parts that are 0 ("0 second" if all are). A negative
        /// duration has a leading "-" and omits its days.
        spelledOut = 6,
        /// Days from one whole day on, otherwise as automatic.
        daysOrAutomatic = 7
    };

    Interval() = default;
    explicit Interval(long long milliseconds) : milliseconds_(milliseconds) {}

    long long GetMilliseconds() const { return milliseconds_; }
    auto operator<=>(Interval const& other) const = default;

    /// Returns the duration as a text such as "2 seconds".
    String ToString(CEStringFormat format) const;

private:
    CEStringFormat AutomaticUnit() const;
    String InOneUnit(CEStringFormat unit) const;
    String SpelledOut() const;

    long long milliseconds_ = 0;
};

}  // namespace core
