#pragma once

#include <memory>

namespace sys::platform {

/// While it lives, an interruption by the user (Ctrl-C, Ctrl-Break) or a request of the operating
/// system to end calls a function instead of ending the process. A second one ends the process at
/// once. Only one watch may exist. It must be created before other threads, and destroyed on the
/// thread that created it. Without memory or threads for it, interruptions end the process as
/// usual.
class InterruptWatch {
public:
    /// act is called at most once, on a thread of its own.
    explicit InterruptWatch(void (*act)());
    InterruptWatch(InterruptWatch const&) = delete;
    InterruptWatch& operator=(InterruptWatch const&) = delete;
    /// Returns after act has returned, if it was called. From then on a request to end is ignored:
    /// the process is about to exit.
    ~InterruptWatch();

    /// Ends the process the way the interruption would have ended it without this watch. Returns if
    /// there was none.
    void EndIfInterrupted();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sys::platform
