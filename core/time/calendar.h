#pragma once

namespace core::calendar {

/// A day of the Gregorian calendar, which is taken to reach back without end.
struct Date {
    long long year;
    int month;
    int day;
};

/// Days since 1970-01-01. The month is 1 to 12, the day may be any number: it counts on from the
/// first of the month. Years up to some 10^15 are safe.
long long daysOf(Date const& date);
/// The other way round.
Date dateOf(long long days);
/// 28 to 31; the month is 1 to 12.
int daysInMonth(long long year, int month);

/// Quotient and remainder (never negative) of a division by a positive number.
long long floorDivide(long long value, long long divisor);
long long floorRemainder(long long value, long long divisor);

}  // namespace core::calendar
