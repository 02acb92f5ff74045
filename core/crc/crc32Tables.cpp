#include <array>

#include "core/crc/crc32Ways.h"

namespace core::crc32 {

namespace {

constexpr std::size_t tableCount = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, tableCount>;

/// Table k maps a byte to its remainder if k + distance bytes follow.
constexpr Tables makeTables(std::size_t distance) {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (std::size_t following = 0; following < distance + tableCount; ++following) {
            for (int bit = 0; bit < 8; ++bit) {
                value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0u);
            }
            if (following >= distance) {
                tables[following - distance][byte] = value;
            }
        }
    }
    return tables;
}

constexpr Tables tables = makeTables(0);
static_assert(tables[0][255] == 0x2D02EF8D);

// Each group of eight bytes needs the register of the previous group, so the CPU mostly waits. A
// CRC is linear: the register of the data is the sum of those of four streams, each with every
// fourth group of the data and zeros between. A stream passes its group and the zeros in one step,
// and the CPU runs the four steps in parallel.
constexpr std::size_t blockSize = 4 * tableCount;
constexpr Tables streamTables = makeTables(blockSize - tableCount);

constexpr std::uint32_t littleEndian(unsigned char const* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

/// Returns the register c continued over a group of eight bytes. The look-ups are independent, so
/// that the CPU runs them in parallel.
inline std::uint32_t updateGroup(Tables const& table, unsigned char const* bytes, std::uint32_t c) {
    c ^= littleEndian(bytes);
    return table[7][c & 0xFF] ^ table[6][(c >> 8) & 0xFF] ^ table[5][(c >> 16) & 0xFF] ^
           table[4][c >> 24] ^ table[3][bytes[4]] ^ table[2][bytes[5]] ^ table[1][bytes[6]] ^
           table[0][bytes[7]];
}

}  // namespace

std::uint32_t updateWithTables(unsigned char const* bytes, std::size_t size, std::uint32_t c) {
    if (size >= 2 * blockSize) {
        std::uint32_t stream0 = c;
        std::uint32_t stream1 = 0;
        std::uint32_t stream2 = 0;
        std::uint32_t stream3 = 0;
        for (; size >= 2 * blockSize; size -= blockSize, bytes += blockSize) {
            stream0 = updateGroup(streamTables, bytes, stream0);
            stream1 = updateGroup(streamTables, bytes + 8, stream1);
            stream2 = updateGroup(streamTables, bytes + 16, stream2);
            stream3 = updateGroup(streamTables, bytes + 24, stream3);
        }
        c = updateGroup(tables, bytes, stream0);
        c = updateGroup(tables, bytes + 8, stream1 ^ c);
        c = updateGroup(tables, bytes + 16, stream2 ^ c);
        c = updateGroup(tables, bytes + 24, stream3 ^ c);
        size -= blockSize;
        bytes += blockSize;
    }
    for (; size >= tableCount; size -= tableCount, bytes += tableCount) {
        c = updateGroup(tables, bytes, c);
    }
    for (; size > 0; --size, ++bytes) {
        c = tables[0][(c ^ *bytes) & 0xFF] ^ (c >> 8);
    }
    return c;
}

}  // namespace core::crc32
