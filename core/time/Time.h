#pragma once

#include <compare>
#include <ctime>

#include "core/text/String.h"
#include "core/time/Interval.h"

namespace core {

/// A point in time: milliseconds since 1970-01-01 00:00 UTC, in the Gregorian calendar, without
/// leap seconds and always in UTC. Whatever would pass the 64-bit range (about 292 million years
/// to either side) is cut to its end.
class Time {
public:
    /// The fixed form of ToString, as a pattern.
    static constexpr char const* StandardPattern = "yyyy-mm-dd HH:MM:SS.zzz";

    Time() = default;
    explicit Time(long long milliseconds) : milliseconds_(milliseconds) {}

    long long GetMilliseconds() const { return milliseconds_; }
    auto operator<=>(Time const& other) const = default;
    Time operator+(Interval const& interval) const;
    Interval operator-(Time const& other) const;

    /// The current time; without milliseconds it is cut to the whole second.
    static Time getStandardTime(bool withMilliseconds);
    /// The current time in microseconds since the start of 1970.
    static long long utcus();

    /// Fields outside their range carry over: month 13 is January of the next year, day 0 the last
    /// of the month before.
    static Time encode(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                       int millisecond = 0);
    /// The calendar fields, as the C library counts them (months from 0, years from 1900).
    std::tm TM() const;
    /// The C library's conversions, of seconds since the start of 1970; fields carry over.
    static std::tm gmtime(long long seconds);
    static long long timegm(std::tm const& fields);

    /// Replaces the date, or the time of day; fields carry over as in encode.
    void ModifyDate(int year, int month, int day);
    void ModifyTime(int hour, int minute, int second, int millisecond = 0);

    /// Days since noon of 1 January 4713 BC (Julian calendar), and, modified, since the start of
    /// 17 November 1858. Back again to the nearest millisecond.
    static double timeToJulian(Time const& time);
    static Time julianToTime(double days);
    static double timeToJulianModified(Time const& time);
    static Time julianToTimeModified(double days);

    /// As "2018-03-07 09:05:02.045".
    String ToString() const;
    /// The pattern with its fields filled in: yyyy (year), mm (month), dd (day), HH (hour), MM
    /// (minute), SS (second) and zzz (millisecond), each at least as wide as here. All else stands
    /// for itself.
    String Format(String const& pattern) const;
    /// Reads what Format wrote with the same pattern; fields that the pattern lacks are those of
    /// the start of 1970. False, and the time stays as it was, when text and pattern differ, a
    /// field is out of range (31 April), or the pattern has no field. A year has four digits when
    /// another field follows directly, else as many as there are.
    bool FromString(String const& text, String const& pattern = StandardPattern);

private:
    long long milliseconds_ = 0;
};

}  // namespace core
