#pragma once

namespace core::math {

// Whatever would pass the 64-bit range is cut to its end.

/// The nearest integer, halves away from zero; not-a-number gives 0.
long long RoundToInt64(double value);

long long AddSaturated(long long left, long long right);
long long SubtractSaturated(long long left, long long right);
/// count times unit and rest on top; unit must be above 0, rest from 0 to unit - 1.
long long ComposeSaturated(long long count, long long unit, long long rest);

}  // namespace core::math
