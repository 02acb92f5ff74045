#include "core/runtime/FailCounter.h"

#include <limits>

#include "sys/scheduler.h"

namespace core {

char const* FailCounter::ClassName() const {
    return "FailCounter";
}

bool FailCounter::Check() {
    if (remaining_ > std::numeric_limits<int>::min()) {
        --remaining_;
    }
    sys::scheduler::yield();
    return remaining_ < 1;
}

}  // namespace core
