#pragma once

#include "core/object/BasicClass.h"

namespace core {

/// Counts down the failures that are allowed.
class FailCounter : public BasicClass {
public:
    /// Allows n - 1 failures; the next one is one too many.
    explicit FailCounter(int n = 0) : remaining_(n) {}

    char const* ClassName() const override;

    /// Counts a failure, and yields the processor so that a loop of retries does not spin. True
    /// when the failures are used up.
    bool Check();

private:
    int remaining_;
};

}  // namespace core
