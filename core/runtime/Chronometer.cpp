#include "core/runtime/Chronometer.h"

#include "sys/scheduler.h"

namespace core {

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
    start_ = lap_ = sys::scheduler::getcurrtickns();
    return true;
}

unsigned long long Chronometer::LapNS() {
    if (lap_ == 0) {
        return 0;
    }
    unsigned long long const now = sys::scheduler::getcurrtickns();
    unsigned long long const before = lap_;
    lap_ = now;
    return now - before;
}

unsigned long long Chronometer::StopNS() {
    if (stop_ >= start_) {
        return 0;
    }
    stop_ = sys::scheduler::getcurrtickns();
    return stop_ - start_;
}

}  // namespace core
