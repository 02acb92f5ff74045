#include "core/runtime/Event.h"

#include <algorithm>
#include <chrono>

#include "core/runtime/Application.h"

namespace core {

namespace {

int const longestSlice = 100;  ///< ms between two looks at the termination request

}  // namespace

char const* Event::ClassName() const {
    return "Event";
}

void Event::Signal() {
    {
        std::lock_guard locked(mutex_);
        signalled_ = true;
    }
    changed_.notify_all();
}

void Event::Clear() {
    std::lock_guard locked(mutex_);
    signalled_ = false;
}

Event::WaitResult Event::Wait(int ms) {
    for (int left = std::max(ms, 0);; left -= longestSlice) {
        if (WaitSlice(std::min(left, longestSlice))) {
            return signalled;
        }
        if (Application::IsTerminationRequested()) {
            return terminating;
        }
        if (left <= longestSlice) {
            return timedOut;
        }
    }
}

bool Event::WaitSlice(int ms) {
    std::unique_lock locked(mutex_);
    return changed_.wait_for(locked, std::chrono::milliseconds(ms), [this] { return signalled_; });
}

}  // namespace core
