#pragma once

#include <condition_variable>
#include <mutex>

#include "core/object/RootClass.h"

namespace core {

/// A manual-reset event: a flag that threads wait for, signalled until it is cleared. Thread-safe.
class Event : public RootClass {
public:
    enum WaitResult { signalled = 1, timedOut = 2, terminating = 4 };

    char const* ClassName() const override;

    void Signal();
    void Clear();
    /// Waits up to ms milliseconds until the event is signalled. Returns terminating within 100 ms
    /// of a termination request of the application.
    WaitResult Wait(int ms);

private:
    bool WaitUninterrupted(int ms);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool signalled_ = false;
};

}  // namespace core
