#include "core/crc/crc32Ways.h"

// For processors without an implementation of folding.

namespace core::crc32 {

bool canFold() {
    return false;
}

std::uint32_t updateByFolding(unsigned char const* bytes, std::size_t blocks, std::uint32_t c) {
    return updateWithTables(bytes, blocks * foldBlockSize, c);
}

}  // namespace core::crc32
