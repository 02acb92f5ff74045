#include "core/runtime/CountDownTimer.h"

#include <algorithm>

#include "core/runtime/Application.h"
#include "sys/scheduler.h"

namespace core {

namespace scheduler = sys::scheduler;

namespace {

unsigned long long const waitSlice = 5;  ///< ms of WaitForIt between two looks at the deadline

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
        unsigned long long const left = Remaining(0, waitSlice);
        if (left == 0) {
            return;
        }
        Application::Sleep(static_cast<int>(left), true);
    }
}

}  // namespace core
