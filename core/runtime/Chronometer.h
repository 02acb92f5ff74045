#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// A stopwatch on the system's tick, in nanoseconds with the resolution of milliseconds.
class Chronometer : public BasicClass {
public:
    char const* ClassName() const override;

    /// Back to the state of a new one.
    void Reset();
    /// Starts; false when it was started before and not reset since.
    bool Start();
    /// Nanoseconds since the last lap or the start; 0 when it was never started.
    unsigned long long LapNS();
    /// Stops: nanoseconds since the start; 0 when it is not running.
    unsigned long long StopNS();

private:
    unsigned long long start_ = 0;
    unsigned long long lap_ = 0;  ///< the start or the last lap
    unsigned long long stop_ = 0;
};

}  // namespace core
