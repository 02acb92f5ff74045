#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "core/time/Time.h"
#include "core/time/calendar.h"
#include "tests/support/PrintText.h"

namespace {

using namespace core;

Time const sample = Time::encode(2018, 3, 7, 9, 5, 2, 45);

TEST(Time, WritesAllForms) {
    EXPECT_EQ(sample.ToString(), "2018-03-07 09:05:02.045");
    EXPECT_EQ(sample.Format("yyyymmddHHMMSSzzz"), "20180307090502045");
    EXPECT_EQ(sample.Format("yyy m %1 \x80"), "yyy m %1 \x80");
    EXPECT_EQ(Time(-1).ToString(), "1969-12-31 23:59:59.999");
    EXPECT_EQ(Time::encode(-5, 1, 1).ToString(), "-0005-01-01 00:00:00.000");
    EXPECT_EQ(Time(LLONG_MAX).ToString(), "292278994-08-17 07:12:55.807");
    EXPECT_EQ(Time(LLONG_MIN).ToString(), "-292275055-05-16 16:47:04.192");
}

TEST(Time, EncodesFieldsThatCarryOver) {
    EXPECT_EQ(Time::encode(2020, 13, 0), Time::encode(2020, 12, 31));
    EXPECT_EQ(Time::encode(2020, 3, 0), Time::encode(2020, 2, 29));
    EXPECT_EQ(Time::encode(2000, 0, 31, 24), Time::encode(2000, 1, 1));
    EXPECT_EQ(Time::encode(1900, 2, 29, 0, -1, 60, 1000), Time::encode(1900, 3, 1, 0, 0, 1));
    EXPECT_EQ(Time::encode(INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX),
              Time(LLONG_MAX));
    EXPECT_EQ(Time::encode(INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN),
              Time(LLONG_MIN));
}

TEST(Time, AgreesWithTheCLibrary) {
    std::mt19937_64 random(20180307);
    std::uniform_int_distribution<long long> seconds(-60000000000, 250000000000);
    for (int round = 0; round < 20000; ++round) {
        std::time_t const when = seconds(random);
        std::tm const fields = Time::gmtime(when);
        ASSERT_EQ(Time::timegm(fields), when);
        // Some C libraries reject times before 1970.
        if (std::tm const* const expected = std::gmtime(&when); expected != nullptr) {
            ASSERT_EQ(fields.tm_year, expected->tm_year) << when;
            ASSERT_EQ(fields.tm_yday, expected->tm_yday) << when;
            ASSERT_EQ(fields.tm_wday, expected->tm_wday) << when;
        }
    }
}

TEST(Time, CalculatesWithoutOverflow) {
    EXPECT_EQ(Time(5) - Time(7), Interval(-2));
    EXPECT_EQ(Time(LLONG_MAX) + Interval(1), Time(LLONG_MAX));

    Time time = sample;
    time.ModifyDate(2000, 2, 29);
    EXPECT_EQ(time.ToString(), "2000-02-29 09:05:02.045") << "the last day of 400 years";
    time.ModifyTime(23, 59, 60);
    EXPECT_EQ(time.ToString(), "2000-03-01 00:00:00.000");
}

TEST(Time, ReadsTheClock) {
    Time const before(std::time(nullptr) * 1000LL);
    Time const second = Time::getStandardTime(false);
    Time const now = Time::getStandardTime(true);
    long long const microseconds = Time::utcus();
    // The clock of the C library may lag.
    EXPECT_TRUE(second.GetMilliseconds() % 1000 == 0 && before <= second && second <= now &&
                now <= Time(microseconds / 1000) &&
                microseconds / 1000000 <= std::time(nullptr) + 1);
}

TEST(Time, ConvertsJulianDays) {
    EXPECT_EQ(Time::timeToJulianModified(Time::encode(2000, 1, 1)), 51544);
    EXPECT_EQ(Time::timeToJulian(Time::encode(2000, 1, 1, 12)), 2451545.0);
    EXPECT_EQ(Time::julianToTimeModified(0).ToString(), "1858-11-17 00:00:00.000");
    EXPECT_EQ(Time::julianToTime(Time::timeToJulian(sample)), sample);
}

TEST(Time, ReadsTextsItWrote) {
    std::mt19937_64 random(20180307);
    std::uniform_int_distribution<long long> any(LLONG_MIN, LLONG_MAX);
    char const* const reversed = "zzz SS|MM|HH dd/mm/yyyy";
    for (int round = 0; round < 5000; ++round) {
        Time const time(round % 2 == 0 ? any(random) : any(random) % 100000000000000);
        Time read;
        ASSERT_TRUE(read.FromString(time.ToString())) << time.ToString().getCString();
        ASSERT_EQ(read, time);
        ASSERT_TRUE(read.FromString(time.Format(reversed), reversed));
        ASSERT_EQ(read, time);
    }
    Time read;
    EXPECT_TRUE(read.FromString("20240229", "yyyymmdd"));
    EXPECT_EQ(read, Time::encode(2024, 2, 29));
    EXPECT_TRUE(read.FromString("07:30", "HH:MM"));
    EXPECT_EQ(read, Time(27000000));
}

TEST(Time, RejectsTextsThatDoNotMatchThePattern) {
    using Row = std::pair<char const*, char const*>;
    for (auto const& [text, pattern] :
         {Row{"", "yyyy"}, Row{"x", "x"}, Row{"", ""}, Row{"2018-13-01", "yyyy-mm-dd"},
          Row{"2018-04-31", "yyyy-mm-dd"}, Row{"1900-02-29", "yyyy-mm-dd"},
          Row{"2018-00-01", "yyyy-mm-dd"}, Row{"24:00", "HH:MM"}, Row{"23:60", "HH:MM"},
          Row{"7:30", "HH:MM"}, Row{"-1:30", "HH:MM"}, Row{" 1:30", "HH:MM"},
          Row{"07:30 ", "HH:MM"}, Row{"07:3", "HH:MM"}, Row{"07:030", "HH:MM"},
          Row{"07-30", "HH:MM"}, Row{"99999999999", "yyyy"}, Row{"-201", "yyyymm"},
          Row{"18", "yyyy"}}) {
        Time time(sample);
        EXPECT_FALSE(time.FromString(text, pattern)) << text << " as " << pattern;
        EXPECT_EQ(time, sample) << text;
    }
}

}  // namespace
