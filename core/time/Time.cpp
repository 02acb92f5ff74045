#include "core/time/Time.h"

#include <algorithm>
#include <chrono>
#include <climits>

#include "core/time/calendar.h"
#include "core/time/saturatedMath.h"

namespace core {

namespace {

using calendar::Date;
using calendar::floorDivide;
using calendar::floorRemainder;

constexpr long long msPerSecond = 1000;
constexpr long long secondsPerDay = 86400;
constexpr long long msPerDay = secondsPerDay * msPerSecond;
// 1970-01-01 00:00 in Julian and in modified Julian days.
constexpr double epochJulian = 2440587.5;
constexpr double epochJulianModified = 40587;

template <class Unit>
long long now() {
    auto const since = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<long long>(std::chrono::duration_cast<Unit>(since).count());
}

long long daysFromFields(long long year, long long month, int day) {
    Date date{year + floorDivide(month - 1, 12),
              static_cast<int>(floorRemainder(month - 1, 12)) + 1, 1};
    return calendar::daysFromDate(date) + day - 1;
}

long long msFromFields(long long hour, long long minute, long long second, long long millisecond) {
    return (hour * 3600 + minute * 60 + second) * msPerSecond + millisecond;
}

/// Returns the time that is milliseconds after the start of a day.
Time timeFromDays(long long days, long long milliseconds) {
    days += floorDivide(milliseconds, msPerDay);
    return Time(math::composeSaturated(days, msPerDay, floorRemainder(milliseconds, msPerDay)));
}

double daysFromTime(Time const& time) {
    return static_cast<double>(time.GetMilliseconds()) / static_cast<double>(msPerDay);
}

Time timeFromJulian(double days) {
    return Time(math::RoundToInt64(days * static_cast<double>(msPerDay)));
}

}  // namespace

Time Time::operator+(Interval const& interval) const {
    return Time(math::addSaturated(milliseconds_, interval.GetMilliseconds()));
}

Interval Time::operator-(Time const& other) const {
    return Interval(math::subtractSaturated(milliseconds_, other.milliseconds_));
}

Time Time::getStandardTime(bool withMilliseconds) {
    long long const ms = now<std::chrono::milliseconds>();
    return Time(withMilliseconds ? ms : ms - floorRemainder(ms, msPerSecond));
}

long long Time::utcus() {
    return now<std::chrono::microseconds>();
}

Time Time::encode(int year, int month, int day, int hour, int minute, int second, int millisecond) {
    return timeFromDays(daysFromFields(year, month, day),
                        msFromFields(hour, minute, second, millisecond));
}

std::tm Time::TM() const {
    return gmtime(floorDivide(milliseconds_, msPerSecond));
}

std::tm Time::gmtime(long long seconds) {
    // Do not convert to a Time, whose range is smaller.
    long long const days = floorDivide(seconds, secondsPerDay);
    auto const secondOfDay = static_cast<int>(floorRemainder(seconds, secondsPerDay));
    Date const date = calendar::dateFromDays(days);
    std::tm result{};
    result.tm_year = static_cast<int>(std::clamp<long long>(date.year - 1900, INT_MIN, INT_MAX));
    result.tm_mon = date.month - 1;
    result.tm_mday = date.day;
    result.tm_hour = secondOfDay / 3600;
    result.tm_min = secondOfDay / 60 % 60;
    result.tm_sec = secondOfDay % 60;
    // 1970-01-01 was a Thursday.
    result.tm_wday = static_cast<int>(floorRemainder(days + 4, 7));
    result.tm_yday = static_cast<int>(days - calendar::daysFromDate({date.year, 1, 1}));
    return result;
}

long long Time::timegm(std::tm const& fields) {
    long long const days =
        daysFromFields(fields.tm_year + 1900LL, fields.tm_mon + 1LL, fields.tm_mday);
    return days * secondsPerDay +
           msFromFields(fields.tm_hour, fields.tm_min, fields.tm_sec, 0) / msPerSecond;
}

void Time::ModifyDate(int year, int month, int day) {
    *this = timeFromDays(daysFromFields(year, month, day), floorRemainder(milliseconds_, msPerDay));
}

void Time::ModifyTime(int hour, int minute, int second, int millisecond) {
    *this = timeFromDays(floorDivide(milliseconds_, msPerDay),
                         msFromFields(hour, minute, second, millisecond));
}

double Time::timeToJulian(Time const& time) {
    return daysFromTime(time) + epochJulian;
}

Time Time::julianToTime(double days) {
    return timeFromJulian(days - epochJulian);
}

double Time::timeToJulianModified(Time const& time) {
    return daysFromTime(time) + epochJulianModified;
}

Time Time::julianToTimeModified(double days) {
    return timeFromJulian(days - epochJulianModified);
}

String Time::ToString() const {
    return Format(standardPattern);
}

}  // namespace core
