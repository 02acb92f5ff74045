#pragma once

#include <atomic>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/runtime/ExecutionBit.h"

namespace core {

/// Handle to a dispatched bit, to cancel it or query its state from any thread.
class ExecutionLink : public BasicClass {
public:
    ExecutionLink(ClassRef<ExecutionBit> const& bit, int priority)
        : bit_(bit), priority_(priority) {}

    char const* ClassName() const override;

    ClassRef<ExecutionBit> const& Bit() const { return bit_; }
    int Priority() const { return priority_; }

    /// Keeps the bit from being run (again); one that is running comes to its end.
    void Cancel() { cancelled_ = true; }
    bool IsCancelled() const { return cancelled_; }
    /// Whether the bit has been run for the last time, or never will be.
    bool IsDone() const { return done_; }
    /// For the queue: the bit has left it.
    void SetDone() { done_ = true; }

private:
    ClassRef<ExecutionBit> const bit_;
    int const priority_;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> done_ = false;
};

}  // namespace core
