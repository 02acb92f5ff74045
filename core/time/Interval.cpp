#include "core/time/Interval.h"

#include "core/text/message.h"
#include "core/time/TimeVal.h"
#include "core/time/calendar.h"
#include "core/time/saturatedMath.h"

namespace core {

namespace {

using Form = Interval::CEStringFormat;

constexpr long long usPerSecond = 1000000;
constexpr long long second = 1000;
constexpr long long minute = 60 * second;
constexpr long long hour = 60 * minute;
constexpr long long day = 24 * hour;

struct Unit {
    Form format;
    long long milliseconds;
    /// Number of these units in the next larger one; 0 for the largest.
    long long modulo;
    char const* name;
};

/// From largest to smallest.
constexpr Unit units[] = {{Form::days, day, 0, "day"},
                          {Form::hours, hour, 24, "hour"},
                          {Form::minutes, minute, 60, "minute"},
                          {Form::seconds, second, 60, "second"},
                          {Form::milliseconds, 1, 1000, "millisecond"}};

template <class Count>
String counted(Count count, char const* name) {
    String const text = message("%1 %2", count, name);
    return count > 1 ? text + 's' : text;
}

}  // namespace

String Interval::ToString(CEStringFormat format) const {
    if (format == Form::spelledOut) {
        return SpelledOut();
    }
    if (format == Form::daysOrAutomatic) {
        return InOneUnit(milliseconds_ >= day ? Form::days : AutomaticUnit());
    }
    bool const oneUnit = format >= Form::milliseconds && format <= Form::days;
    return InOneUnit(oneUnit ? format : AutomaticUnit());
}

Interval::CEStringFormat Interval::AutomaticUnit() const {
    for (Unit const& unit : units) {
        bool const tested = unit.modulo != 0 && unit.milliseconds >= second;
        if (tested && milliseconds_ / unit.milliseconds % unit.modulo != 0) {
            return unit.format;
        }
    }
    return milliseconds_ != 0 && milliseconds_ % day == 0 ? Form::days : Form::milliseconds;
}

String Interval::InOneUnit(CEStringFormat format) const {
    for (Unit const& unit : units) {
        if (unit.format != format) {
            continue;
        }
        // Milliseconds are not rounded: a double does not represent all of them.
        long long const count = unit.milliseconds == 1
                                    ? milliseconds_
                                    : math::RoundToInt64(static_cast<double>(milliseconds_) /
                                                         static_cast<double>(unit.milliseconds));
        return counted(count, unit.name);
    }
    return {};
}

String Interval::SpelledOut() const {
    // Unsigned: the most negative number has no positive counterpart.
    auto const raw = static_cast<unsigned long long>(milliseconds_);
    unsigned long long const size = milliseconds_ < 0 ? 0 - raw : raw;
    String text;
    for (Unit const& unit : units) {
        unsigned long long count = size / static_cast<unsigned long long>(unit.milliseconds);
        if (unit.modulo != 0) {
            count %= static_cast<unsigned long long>(unit.modulo);
        }
        // A negative number of days is omitted for compatibility, unlike smaller units.
        bool const negativeDays = milliseconds_ < 0 && unit.format == Form::days;
        if (count == 0 || negativeDays || unit.format == Form::milliseconds) {
            continue;
        }
        text += text.IsEmpty() ? (milliseconds_ < 0 ? "-" : "") : ", ";
        text += counted(count, unit.name);
    }
    return text.IsEmpty() ? counted(0, "second") : text;
}

TimeVal::TimeVal(long long seconds, long long microseconds)
    : seconds_(math::addSaturated(seconds, calendar::floorDivide(microseconds, usPerSecond))),
      microseconds_(static_cast<int>(calendar::floorRemainder(microseconds, usPerSecond))) {}

TimeVal::TimeVal(Interval const& interval)
    : TimeVal(calendar::floorDivide(interval.GetMilliseconds(), 1000),
              calendar::floorRemainder(interval.GetMilliseconds(), 1000) * 1000) {}

long long TimeVal::GetMilliseconds() const {
    return math::composeSaturated(seconds_, 1000, microseconds_ / 1000);
}

}  // namespace core
