#include <gtest/gtest.h>

#include <limits>

#include "core/runtime/Chronometer.h"
#include "core/runtime/CountDownTimer.h"
#include "core/runtime/FailCounter.h"
#include "sys/scheduler.h"

namespace {

using core::CountDownTimer;

std::uint32_t now = 0;
std::uint32_t step = 0;  ///< added to now by each reading

class TimersTest : public testing::Test {
protected:
    TimersTest() {
        now = 1000;
        step = 0;
        sys::scheduler::setTickSource([] { return now += step; });
    }
    ~TimersTest() override { sys::scheduler::setTickSource(nullptr); }
};

TEST_F(TimersTest, CountsDownAndRestarts) {
    CountDownTimer timer(5000ULL);
    auto const left = [&timer] { return timer.Remaining(0, CountDownTimer::unlimited); };
    EXPECT_STREQ(timer.ClassName(), "CountDownTimer");
    EXPECT_FALSE(timer.Expired());
    EXPECT_EQ(timer.Remaining(100, 1000), 1000u);
    EXPECT_EQ(timer.RemainingTimeout(100, ~0U), 5000u);
    now += 4950;
    EXPECT_TRUE(timer.Elapsed() == 4950 && left() == 50 && timer.Remaining(100, 1000) == 100);
    now += 49;
    EXPECT_FALSE(timer.Expired());
    now += 1;
    EXPECT_TRUE(timer.Expired());
    EXPECT_EQ(timer.Remaining(100, 1000), 0u) << "not the minimum";
    timer.Reset(~0ULL);
    EXPECT_EQ(left(), 5000u);
    timer.Reset(core::Interval(70));
    EXPECT_EQ(left(), 70u);
    timer.Reset(core::TimeVal(2, 500'000));
    EXPECT_EQ(left(), 2500u);
    timer.Reset(0);
    EXPECT_TRUE(timer.Expired());
    timer.WaitForIt();
    EXPECT_EQ(CountDownTimer(core::TimeVal(1, 0)).Remaining(0, 2000), 1000u);
    EXPECT_EQ(CountDownTimer(core::Interval(7)).Remaining(0, 1000), 7u);
    EXPECT_EQ(CountDownTimer(1ULL << 40).RemainingTimeout(0, ~0U), ~0U);
    EXPECT_TRUE(CountDownTimer().Expired() && CountDownTimer().Remaining(100, 1000) == 0);
    EXPECT_TRUE(CountDownTimer(0ULL).Expired() && !CountDownTimer(1ULL).Expired());
}

TEST_F(TimersTest, WaitsUntilTheDeadline) {
    CountDownTimer timer(20ULL);
    step = 1;
    timer.WaitForIt();
    EXPECT_EQ(now, 1020u);
}

TEST_F(TimersTest, FollowsTheTickAcrossItsWrap) {
    now = 0xFFFFFFFF;
    CountDownTimer const timer(10ULL);
    now = 5;
    EXPECT_FALSE(timer.Expired());
    EXPECT_EQ(timer.Remaining(0, 1000), 1000u);
    EXPECT_EQ(sys::scheduler::getcurrtickus(), 5000u);
    EXPECT_EQ(sys::scheduler::getcurrtickns(), 5000000u);
}

TEST_F(TimersTest, ChronometerMeasuresLapsAndTotal) {
    core::Chronometer chronometer;
    EXPECT_STREQ(chronometer.ClassName(), "Chronometer");
    EXPECT_EQ(chronometer.LapNS() + chronometer.StopNS(), 0u);
    EXPECT_TRUE(chronometer.Start() && !chronometer.Start());
    for (unsigned const ms : {3U, 4U}) {
        now += ms;
        EXPECT_EQ(chronometer.LapNS(), ms * 1'000'000);
    }
    now += 5;
    EXPECT_EQ(chronometer.StopNS(), 12'000'000u);
    EXPECT_EQ(chronometer.StopNS(), 0u);
    EXPECT_FALSE(chronometer.Start()) << "stopped, but not reset";
    chronometer.Reset();
    EXPECT_TRUE(chronometer.Start());
}

TEST_F(TimersTest, FailCounterCountsDown) {
    core::FailCounter three(3);
    EXPECT_STREQ(three.ClassName(), "FailCounter");
    for (bool const failed : {false, false, true, true}) {
        EXPECT_EQ(three.Check(), failed);
    }
    for (int const few : {1, 0, std::numeric_limits<int>::min()}) {
        EXPECT_TRUE(core::FailCounter(few).Check()) << few;
    }
}

}  // namespace
