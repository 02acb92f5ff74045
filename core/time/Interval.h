#pragma once

#include <compare>

#include "core/text/String.h"

namespace core {

/// A length of time in milliseconds.
class Interval {
public:
    /// The text forms. A number above 1 gives its unit an "s"; 0, 1 and negative numbers do not.
    enum CEStringFormat : int {
        /// One unit, the largest of hours, minutes and seconds that is left over after the larger
        /// ones; days when only whole days are there, milliseconds below one second. Any value not
        /// named here means the same.
        FormatAuto = 0,
        // One unit, rounded to the nearest number.
        FormatMilliseconds = 1,
        FormatSeconds = 2,
        FormatMinutes = 3,
        FormatHours = 4,
        FormatDays = 5,
        /// "1 day, 2 hours, 5 seconds": what is 0 is left out ("0 second" when all is), a negative
        /// interval begins with "-" and omits its days.
        FormatSpelledOut = 6,
        /// Days from one whole day on, below like FormatAuto.
        FormatDaysOrAuto = 7
    };

    Interval() = default;
    explicit Interval(long long milliseconds) : milliseconds_(milliseconds) {}

    long long GetMilliseconds() const { return milliseconds_; }
    auto operator<=>(Interval const& other) const = default;

    String ToString(CEStringFormat format) const;

private:
    CEStringFormat automaticUnit() const;
    String inOneUnit(CEStringFormat unit) const;
    String spelledOut() const;

    long long milliseconds_ = 0;
};

}  // namespace core
