#include <algorithm>
#include <limits>

#include "core/runtime/Application.h"
#include "core/runtime/Chronometer.h"
#include "core/runtime/CountDownTimer.h"
#include "core/runtime/FailCounter.h"
#include "sys/scheduler.h"

namespace core {

namespace scheduler = sys::scheduler;

namespace {

unsigned long long const pollInterval = 5;  ///< ms between two checks of the deadline

}  // namespace

CountDownTimer::CountDownTimer() : deadline_(scheduler::getcurrtickms()) {}

CountDownTimer::CountDownTimer(unsigned long long ms)
    : duration_(ms), start_(scheduler::getcurrtickms()), deadline_(start_ + ms) {}

CountDownTimer::CountDownTimer(Interval const& interval)
    : CountDownTimer(static_cast<unsigned long long>(interval.GetMilliseconds())) {}

CountDownTimer::CountDownTimer(TimeVal const& time) : CountDownTimer(time.ToInterval()) {}

char const* CountDownTimer::ClassName() const {
    return "CountDownTimer";
}

void CountDownTimer::Reset(unsigned long long ms) {
    if (ms != samePeriod) {
        duration_ = ms;
    }
    start_ = scheduler::getcurrtickms();
    deadline_ = start_ + duration_;
}

void CountDownTimer::Reset(Interval const& interval) {
    Reset(static_cast<unsigned long long>(interval.GetMilliseconds()));
}

void CountDownTimer::Reset(TimeVal const& time) {
    Reset(time.ToInterval());
}

unsigned long long CountDownTimer::Elapsed() const {
    return scheduler::getcurrtickms() - start_;
}

bool CountDownTimer::Expired() const {
    if (duration_ == 0) {
        return true;
    }
    scheduler::yield();
    return scheduler::getcurrtickms() >= deadline_;
}

unsigned long long CountDownTimer::Remaining(unsigned long long min, unsigned long long max) const {
    unsigned long long const now = scheduler::getcurrtickms();
    if (now >= deadline_) {
        return 0;
    }
    unsigned long long const left = deadline_ - now;
    return left < min ? min : std::min(left, max);
}

unsigned int CountDownTimer::RemainingTimeout(unsigned int min, unsigned int max) const {
    return static_cast<unsigned int>(Remaining(min, max));
}

void CountDownTimer::WaitForIt() {
    while (duration_ != 0) {
        scheduler::yield();
        unsigned long long const left = Remaining(0, pollInterval);
        if (left == 0) {
            return;
        }
        Application::Sleep(static_cast<int>(left), true);
    }
}

char const* Chronometer::ClassName() const {
    return "Chronometer";
}

void Chronometer::Reset() {
    start_ = lap_ = stop_ = 0;
}

bool Chronometer::Start() {
    if (stop_ != start_) {
        return false;
    }
    start_ = lap_ = scheduler::getcurrtickns();
    return true;
}

unsigned long long Chronometer::LapNS() {
    if (lap_ == 0) {
        return 0;
    }
    unsigned long long const before = lap_;
    lap_ = scheduler::getcurrtickns();
    return lap_ - before;
}

unsigned long long Chronometer::StopNS() {
    if (stop_ >= start_) {
        return 0;
    }
    stop_ = scheduler::getcurrtickns();
    return stop_ - start_;
}

char const* FailCounter::ClassName() const {
    return "FailCounter";
}

bool FailCounter::Check() {
    // Not below the minimum: a wrapped counter would allow failures again.
    if (remaining_ > std::numeric_limits<int>::min()) {
        --remaining_;
    }
    scheduler::yield();
    return remaining_ < 1;
}

}  // namespace core
