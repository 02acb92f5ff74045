#include "core/crc/crc32Folding.h"
#include "core/crc/crc32Tables.h"

namespace core::crc32 {

bool canFold() {
    return false;
}

std::uint32_t updateByFolding(unsigned char const* bytes, std::size_t blocks, std::uint32_t c) {
    return updateWithTables(bytes, blocks * foldedBlock, c);
}

}  // namespace core::crc32
