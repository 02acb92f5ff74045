#include "core/time/calendar.h"

namespace core::calendar {

namespace {

// An era is 400 years, after which the calendar repeats. Years begin in March, so that the leap day
// is the last day of its year.
constexpr long long daysPerEra = 146097;
/// From 0000-03-01 to 1970-01-01.
constexpr long long daysBeforeEpoch = 719468;

/// Returns the days from 1 March to the first of the month that is months later.
long long daysFromMarch(long long months) {
    return (153 * months + 2) / 5;
}

}  // namespace

long long floorDivide(long long value, long long divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

long long floorRemainder(long long value, long long divisor) {
    long long const rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

long long daysFromDate(Date const& date) {
    long long const year = date.month <= 2 ? date.year - 1 : date.year;
    long long const yearOfEra = floorRemainder(year, 400);
    long long const dayOfEra =
        yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + daysFromMarch((date.month + 9) % 12);
    return floorDivide(year, 400) * daysPerEra + dayOfEra + date.day - 1 - daysBeforeEpoch;
}

Date dateFromDays(long long days) {
    long long const shifted = days + daysBeforeEpoch;
    long long const dayOfEra = floorRemainder(shifted, daysPerEra);
    // Without the era's previous leap days every year has 365 days.
    long long const yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    long long const dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    long long const months = (5 * dayOfYear + 2) / 153;
    int const month = static_cast<int>(months < 10 ? months + 3 : months - 9);
    long long const year = floorDivide(shifted, daysPerEra) * 400 + yearOfEra;
    return {month <= 2 ? year + 1 : year, month,
            static_cast<int>(dayOfYear - daysFromMarch(months)) + 1};
}

int daysInMonth(long long year, int month) {
    Date const next = month < 12 ? Date{year, month + 1, 1} : Date{year + 1, 1, 1};
    return static_cast<int>(daysFromDate(next) - daysFromDate({year, month, 1}));
}

}  // namespace core::calendar
