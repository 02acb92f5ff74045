#include "core/runtime/Event.h"

#include <algorithm>
#include <chrono>

#include "core/runtime/Application.h"

namespace core {

namespace {

int const pollInterval = 100;  ///< ms between two checks for a termination request

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
    for (int left = std::max(ms, 0);; left -= pollInterval) {
        if (WaitUninterrupted(std::min(left, pollInterval))) {
            return signalled;
        }
        if (Application::IsTerminationRequested()) {
            return terminating;
        }
        if (left <= pollInterval) {
            return timedOut;
        }
    }
}

bool Event::WaitUninterrupted(int ms) {
    std::unique_lock locked(mutex_);
    return changed_.wait_for(locked, std::chrono::milliseconds(ms), [this] { return signalled_; });
}

}  // namespace core
