#include "core/time/math.h"

#include <cmath>
#include <limits>

namespace core::math {

long long RoundToInt64(double value) {
    using Limits = std::numeric_limits<long long>;
    constexpr double end = 9223372036854775808.0;
    if (std::isnan(value)) {
        return 0;
    }
    double const rounded = value < 0 ? std::ceil(value - 0.5) : std::floor(value + 0.5);
    if (rounded >= end) {
        return Limits::max();
    }
    return rounded < -end ? Limits::min() : static_cast<long long>(rounded);
}

}  // namespace core::math
