#pragma once

#include <atomic>

#include "core/object/BasicClass.h"

namespace core {

/// A piece of work for an execution queue: a derived class says in Execute what it does.
class ExecutionBit : public BasicClass {
public:
    /// Not to be run before the given tick (ms, see sys::scheduler); 0 means at once.
    explicit ExecutionBit(unsigned long long notBefore = 0) : notBefore_(notBefore) {}

    char const* ClassName() const override;

    unsigned long long GetNotBefore() const { return notBefore_; }
    /// From any thread; a queue looks at it when it next chooses.
    void SetNotBefore(unsigned long long tick) { notBefore_ = tick; }

    /// Does the work, at the tick now. True to be queued once more, behind the others of the same
    /// priority; a bit that is to wait sets its new not-before tick here. An exception counts as
    /// false: the application's queue drops the bit and goes on.
    virtual bool Execute(unsigned long long now) = 0;

private:
    std::atomic<unsigned long long> notBefore_;
};

}  // namespace core
