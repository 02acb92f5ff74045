#include <array>

#include "core/crc/crc32Ways.h"

namespace core::crc32 {

namespace {

constexpr std::size_t tableCount = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, tableCount>;

/// Table 0 maps a byte to its remainder; table k does so for a byte that k others follow.
constexpr Tables makeTables() {
    Tables tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0u);
        }
        tables[0][i] = value;
    }
    for (std::size_t k = 1; k < tableCount; ++k) {
        for (std::size_t i = 0; i < 256; ++i) {
            std::uint32_t const previous = tables[k - 1][i];
            tables[k][i] = (previous >> 8) ^ tables[0][previous & 0xFF];
        }
    }
    return tables;
}

constexpr Tables tables = makeTables();

constexpr std::uint32_t littleEndian(unsigned char const* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

}  // namespace

std::uint32_t updateWithTables(unsigned char const* bytes, std::size_t size, std::uint32_t c) {
    // The eight look-ups of a group are independent, so that the CPU runs them in parallel.
    for (; size >= tableCount; size -= tableCount, bytes += tableCount) {
        c ^= littleEndian(bytes);
        c = tables[7][c & 0xFF] ^ tables[6][(c >> 8) & 0xFF] ^ tables[5][(c >> 16) & 0xFF] ^
            tables[4][c >> 24] ^ tables[3][bytes[4]] ^ tables[2][bytes[5]] ^ tables[1][bytes[6]] ^
            tables[0][bytes[7]];
    }
    for (; size > 0; --size, ++bytes) {
        c = tables[0][(c ^ *bytes) & 0xFF] ^ (c >> 8);
    }
    return c;
}

}  // namespace core::crc32
