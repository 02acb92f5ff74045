#pragma once

#include <condition_variable>
#include <mutex>

#include "core/object/RootClass.h"

namespace core {

/// A flag that threads can wait for. It stays signalled until it is cleared.
class Event : public RootClass {
public:
    enum WaitResult { signalled = 1, timedOut = 2, terminating = 4 };

    char const* ClassName() const override;

    void Signal();
    void Clear();
    /// Waits up to ms milliseconds for the signal; ends within 100 ms of a termination request.
    WaitResult Wait(int ms);

private:
    bool WaitSlice(int ms);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool signalled_ = false;
};

}  // namespace core
