#include "core/crc/crc32Ways.h"

// For processors without an implementation by special instructions.

namespace core::crc32 {

std::span<Way const> supportedWays() {
    static constexpr Way ways[] = {{"tables", updateWithTables}};
    return ways;
}

}  // namespace core::crc32
