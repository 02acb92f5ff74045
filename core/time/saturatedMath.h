#pragma once

/// Arithmetic whose results saturate at the 64-bit limits.
namespace core::math {

/// Returns the nearest integer, halves away from zero; 0 for not-a-number.
[[nodiscard]] long long RoundToInt64(double value);

[[nodiscard]] long long addSaturated(long long left, long long right);
[[nodiscard]] long long subtractSaturated(long long left, long long right);
/// Returns count * unit + rest. The unit must be positive, rest from 0 to unit - 1.
[[nodiscard]] long long composeSaturated(long long count, long long unit, long long rest);

}  // namespace core::math
