#include "core/time/TimeVal.h"

#include "core/time/calendar.h"
#include "core/time/math.h"

namespace core {

namespace {

constexpr long long usPerSecond = 1000000;

}  // namespace

TimeVal::TimeVal(long long seconds, long long microseconds)
    : seconds_(math::AddSaturated(seconds, calendar::floorDivide(microseconds, usPerSecond))),
      microseconds_(static_cast<int>(calendar::floorRemainder(microseconds, usPerSecond))) {}

TimeVal::TimeVal(Interval const& interval)
    : TimeVal(calendar::floorDivide(interval.GetMilliseconds(), 1000),
              calendar::floorRemainder(interval.GetMilliseconds(), 1000) * 1000) {}

long long TimeVal::GetMilliseconds() const {
    return math::ComposeSaturated(seconds_, 1000, microseconds_ / 1000);
}

}  // namespace core
