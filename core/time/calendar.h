#pragma once

namespace core::calendar {

/// A date in the proleptic Gregorian calendar.
struct Date {
    long long year;
    int month;  ///< 1 to 12
    int day;
};

/// Returns the days from 1970-01-01 to date. The day may be any number: it counts on from the first
/// of the month. Years up to 10^15 before or after the year 0 do not overflow.
[[nodiscard]] long long daysFromDate(Date const& date);
/// Returns the date that is days after 1970-01-01.
[[nodiscard]] Date dateFromDays(long long days);
/// Returns 28 to 31 for a month from 1 to 12.
[[nodiscard]] int daysInMonth(long long year, int month);

/// Returns the quotient, rounded down. The divisor must be positive.
[[nodiscard]] long long floorDivide(long long value, long long divisor);
/// Returns the remainder that belongs to floorDivide, from 0 to divisor - 1.
[[nodiscard]] long long floorRemainder(long long value, long long divisor);

}  // namespace core::calendar
