#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// A work item of an execution queue; a derived class implements Execute.
class ExecutionBit : public BasicClass {
public:
    /// Not to be run before the given tick (ms, see sys::scheduler); 0 means at once.
    explicit ExecutionBit(unsigned long long notBefore = 0) : notBefore_(notBefore) {}

    char const* ClassName() const override;

    unsigned long long GetNotBefore() const { return notBefore_; }

    /// Does the work; now is the current tick. Returns true to be queued again, after the other
    /// items of the same priority. An exception counts as false.
    virtual bool Execute(unsigned long long now) = 0;

private:
    unsigned long long const notBefore_;
};

}  // namespace core
