#pragma once

#include <limits>

namespace core {

/// The port of an address that has none.
inline constexpr int noPort = std::numeric_limits<int>::min();

}  // namespace core
