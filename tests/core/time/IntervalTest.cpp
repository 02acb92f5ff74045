#include <gtest/gtest.h>

#include "core/time/Interval.h"
#include "core/time/TimeVal.h"
#include "core/time/saturatedMath.h"
#include "tests/support/PrintText.h"

namespace {

using namespace core;

TEST(Interval, WritesAllForms) {
    constexpr long long day = 86400000;
    using Row = std::tuple<long long, int, char const*>;
    for (auto const& [ms, format, expected] :
         {Row{0, 1, "0 millisecond"}, Row{1, 1, "1 millisecond"}, Row{-2, 1, "-2 millisecond"},
          Row{LLONG_MAX, 1, "9223372036854775807 milliseconds"}, Row{1500, 2, "2 seconds"},
          Row{1499, 2, "1 second"}, Row{-500, 2, "-1 second"}, Row{-499, 2, "0 second"},
          Row{90000, 3, "2 minutes"}, Row{3600000, 4, "1 hour"}, Row{day / 2, 5, "1 day"},
          Row{LLONG_MIN, 5, "-106751991167 day"},
          // Days from one whole day on, otherwise a smaller unit.
          Row{day - 1, 7, "24 hours"}, Row{day, 7, "1 day"}, Row{day * 3 / 2, 7, "2 days"},
          Row{290000, 7, "5 minutes"}, Row{0, 7, "0 millisecond"},
          // The largest unit with a remainder.
          Row{999, 0, "999 milliseconds"}, Row{59999, 0, "60 seconds"}, Row{60000, 0, "1 minute"},
          Row{3599999, 0, "60 minutes"}, Row{7200000, 99, "2 hours"}, Row{-5000, 0, "-5 second"},
          Row{25 * 3600000, 0, "25 hours"}, Row{2 * day, -1, "2 days"}, Row{0, 0, "0 millisecond"},
          Row{90061000, 6, "1 day, 1 hour, 1 minute, 1 second"}, Row{999, 6, "0 second"},
          Row{2 * day + 5000, 6, "2 days, 5 seconds"}, Row{-61000, 6, "-1 minute, 1 second"},
          Row{LLONG_MIN, 6, "-7 hours, 12 minutes, 55 seconds"}}) {
        EXPECT_EQ(Interval(ms).ToString(static_cast<Interval::CEStringFormat>(format)), expected)
            << ms << " as " << format;
    }
}

TEST(Interval, RoundsAndSaturates) {
    EXPECT_EQ(core::math::RoundToInt64(2.5), 3);
    EXPECT_EQ(core::math::RoundToInt64(-2.5), -3);
    EXPECT_EQ(core::math::RoundToInt64(0.0 / 0.0), 0);
    EXPECT_EQ(core::math::RoundToInt64(1e19) + core::math::RoundToInt64(-1e19), -1);
    EXPECT_EQ(core::math::subtractSaturated(0, LLONG_MIN), LLONG_MAX);
    EXPECT_EQ(core::math::subtractSaturated(LLONG_MIN, 1), LLONG_MIN);
    EXPECT_EQ(core::math::addSaturated(LLONG_MIN, -1), LLONG_MIN);

    EXPECT_EQ(TimeVal(-2, 1500000).GetMilliseconds(), -500);
    EXPECT_EQ(TimeVal(-2, 1500000), TimeVal(-1, 500000));
    EXPECT_EQ(TimeVal(0, -1).GetMilliseconds(), -1) << "rounded down";
    EXPECT_EQ(TimeVal(LLONG_MAX, LLONG_MAX).GetMilliseconds(), LLONG_MAX);
    for (long long ms : {LLONG_MIN, -1001LL, 0LL, 1LL, LLONG_MAX}) {
        EXPECT_EQ(TimeVal(Interval(ms)).ToInterval(), Interval(ms)) << ms;
    }
}

}  // namespace
