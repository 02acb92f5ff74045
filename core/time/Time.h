#pragma once

#include <compare>
#include <ctime>

#include "core/text/String.h"
#include "core/time/Interval.h"

namespace core {

/// A point in time: milliseconds since 1970-01-01 00:00 UTC, without leap seconds. Calendar fields
/// are in UTC and in the proleptic Gregorian calendar. Results saturate at the 64-bit limits, about
/// 292 million years before and after 1970.
class Time {
public:
    /// The pattern of ToString.
    static constexpr char const* standardPattern = "yyyy-mm-dd HH:MM:SS.zzz";

    Time() = default;
    explicit Time(long long milliseconds) : milliseconds_(milliseconds) {}

    long long GetMilliseconds() const { return milliseconds_; }
    auto operator<=>(Time const& other) const = default;
    Time operator+(Interval const& interval) const;
    Interval operator-(Time const& other) const;

    /// Returns the current time, rounded down to the second unless withMilliseconds.
    static Time getStandardTime(bool withMilliseconds);
    /// Returns the current time in microseconds since 1970-01-01 00:00.
    static long long utcus();

    /// Returns the time of these fields. Fields outside their range carry over: month 13 is January
    /// of the next year, day 0 is the last day of the previous month.
    static Time encode(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                       int millisecond = 0);
    /// Returns the calendar fields as the C library counts them: months from 0, years from 1900.
    std::tm TM() const;
    /// Converts seconds since 1970-01-01 00:00 to calendar fields and back, for any year. Fields
    /// carry over.
    static std::tm gmtime(long long seconds);
    static long long timegm(std::tm const& fields);

    /// Replaces the date or the time of day; fields carry over as in encode.
    void ModifyDate(int year, int month, int day);
    void ModifyTime(int hour, int minute, int second, int millisecond = 0);

    /// Converts to Julian days, which count from noon of 1 January 4713 BC (Julian calendar), and
    /// back, to the nearest millisecond.
    static double timeToJulian(Time const& time);
    static Time julianToTime(double days);
    /// The same for modified Julian days, which count from 1858-11-17 00:00.
    static double timeToJulianModified(Time const& time);
    static Time julianToTimeModified(double days);

    /// Returns a text such as "2018-03-07 09:05:02.045".
    String ToString() const;
    /// Returns pattern with its fields replaced: yyyy (year), mm (month), dd (day), HH (hour), MM
    /// (minute), SS (second) and zzz (millisecond), each padded with zeros to this width. Other
    /// characters are copied.
    String Format(String const& pattern) const;
    /// Reads a text in the form of Format with the same pattern. Fields missing in the pattern are
    /// those of 1970-01-01 00:00. Returns false, leaving the time unchanged, if text and pattern
    /// differ, a field is out of range (31 April), or the pattern has no field. A year has four
    /// digits if another field follows directly, otherwise all that there are.
    bool FromString(String const& text, String const& pattern = standardPattern);

private:
    long long milliseconds_ = 0;
};

}  // namespace core
