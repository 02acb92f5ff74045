#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// A stopwatch on the system tick: values in nanoseconds, resolution one millisecond. Not
/// thread-safe.
class Chronometer : public BasicClass {
public:
    char const* ClassName() const override;

    /// Returns to the initial state.
    void Reset();
    /// Starts, and returns true; returns false if already started and not reset since.
    bool Start();
    /// Returns the nanoseconds since the last lap or the start; 0 if never started.
    unsigned long long LapNS();
    /// Stops, and returns the nanoseconds since the start; 0 if not running.
    unsigned long long StopNS();

private:
    unsigned long long start_ = 0;
    unsigned long long lap_ = 0;  ///< the start or the last lap
    unsigned long long stop_ = 0;
};

}  // namespace core
