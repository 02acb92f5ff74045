#pragma once

#include <memory>

namespace sys::platform {

/// As long as it lives, an interruption by the user or the system's request to end calls a function
/// in the place of ending the process. A user who interrupts again ends it at once. There is one at
/// a time.
class InterruptWatch {
public:
    /// act is called at most once, on a thread of its own.
    explicit InterruptWatch(void (*act)());
    InterruptWatch(InterruptWatch const&) = delete;
    InterruptWatch& operator=(InterruptWatch const&) = delete;
    /// Returns when act has returned, if it was called.
    ~InterruptWatch();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sys::platform
