#pragma once

namespace core::math {

/// The nearest integer, halves away from zero, cut to the 64-bit range; not-a-number gives 0.
long long RoundToInt64(double value);

}  // namespace core::math
