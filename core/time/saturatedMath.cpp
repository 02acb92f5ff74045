#include "core/time/saturatedMath.h"

#include <cmath>
#include <limits>

namespace core::math {

namespace {

using Limits = std::numeric_limits<long long>;

}  // namespace

long long RoundToInt64(double value) {
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

long long addSaturated(long long left, long long right) {
    if (right > 0 && left > Limits::max() - right) {
        return Limits::max();
    }
    return right < 0 && left < Limits::min() - right ? Limits::min() : left + right;
}

long long subtractSaturated(long long left, long long right) {
    if (right < 0 && left > Limits::max() + right) {
        return Limits::max();
    }
    return right > 0 && left < Limits::min() + right ? Limits::min() : left - right;
}

long long composeSaturated(long long count, long long unit, long long rest) {
    if (count < 0) {
        // Start from the unit's end: near the lower limit its start may be out of range.
        ++count;
        rest -= unit;
    }
    if (count > Limits::max() / unit) {
        return Limits::max();
    }
    return count < Limits::min() / unit ? Limits::min() : addSaturated(count * unit, rest);
}

}  // namespace core::math
