#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// Counts down a number of allowed failures. Not thread-safe.
class FailCounter : public BasicClass {
public:
    /// The n-th failure is the first that is not allowed; with n below 1, the first one.
    explicit FailCounter(int n = 0) : remaining_(n) {}

    char const* ClassName() const override;

    /// Counts a failure and returns true if it is not allowed. Yields the processor, so that a
    /// loop of retries does not spin.
    bool Check();

private:
    int remaining_;
};

}  // namespace core
