#include "core/time/Interval.h"

#include "core/time/math.h"

namespace core {

namespace {

constexpr long long second = 1000;
constexpr long long minute = 60 * second;
constexpr long long hour = 60 * minute;
constexpr long long day = 24 * hour;

struct Unit {
    Interval::CEStringFormat format;
    long long milliseconds;
    /// How many of them the next larger unit has; 0 for the largest.
    long long modulo;
    char const* name;
};

/// From the largest to the smallest.
constexpr Unit units[] = {{Interval::FormatDays, day, 0, "day"},
                          {Interval::FormatHours, hour, 24, "hour"},
                          {Interval::FormatMinutes, minute, 60, "minute"},
                          {Interval::FormatSeconds, second, 60, "second"},
                          {Interval::FormatMilliseconds, 1, 1000, "millisecond"}};

template <class Count>
String counted(Count count, char const* name) {
    String const text = String::format("%1 %2").argi(1, count).argi(2, name);
    return count > 1 ? text + 's' : text;
}

}  // namespace

String Interval::ToString(CEStringFormat format) const {
    if (format == FormatSpelledOut) {
        return spelledOut();
    }
    if (format == FormatDaysOrAuto) {
        return inOneUnit(milliseconds_ >= day ? FormatDays : automaticUnit());
    }
    bool const oneUnit = format >= FormatMilliseconds && format <= FormatDays;
    return inOneUnit(oneUnit ? format : automaticUnit());
}

Interval::CEStringFormat Interval::automaticUnit() const {
    for (Unit const& unit : units) {
        bool const tested = unit.modulo != 0 && unit.milliseconds >= second;
        if (tested && milliseconds_ / unit.milliseconds % unit.modulo != 0) {
            return unit.format;
        }
    }
    return milliseconds_ != 0 && milliseconds_ % day == 0 ? FormatDays : FormatMilliseconds;
}

String Interval::inOneUnit(CEStringFormat format) const {
    for (Unit const& unit : units) {
        if (unit.format != format) {
            continue;
        }
        // Milliseconds are written as they are: a double would not hold them all.
        long long const count = unit.milliseconds == 1
                                    ? milliseconds_
                                    : math::RoundToInt64(static_cast<double>(milliseconds_) /
                                                         static_cast<double>(unit.milliseconds));
        return counted(count, unit.name);
    }
    return {};
}

String Interval::spelledOut() const {
    // Unsigned, because the smallest interval has no positive counterpart.
    auto const raw = static_cast<unsigned long long>(milliseconds_);
    unsigned long long const size = milliseconds_ < 0 ? 0 - raw : raw;
    String text;
    for (Unit const& unit : units) {
        unsigned long long count = size / static_cast<unsigned long long>(unit.milliseconds);
        if (unit.modulo != 0) {
            count %= static_cast<unsigned long long>(unit.modulo);
        }
        // A negative number of days is not written, though the smaller units are.
        bool const negativeDays = milliseconds_ < 0 && unit.format == FormatDays;
        if (count == 0 || negativeDays || unit.format == FormatMilliseconds) {
            continue;
        }
        text += text.IsEmpty() ? (milliseconds_ < 0 ? "-" : "") : ", ";
        text += counted(count, unit.name);
    }
    return text.IsEmpty() ? counted(0, "second") : text;
}

}  // namespace core
