#pragma once

#include <cstddef>
#include <cstdint>

/// Returns the CRC-32 of size bytes, bit by bit as its definition says: independent of core/crc,
/// and on every processor.
inline std::uint32_t bitwiseCrc32(void const* data, std::size_t size) {
    auto const* const bytes = static_cast<unsigned char const*>(data);
    std::uint32_t c = ~0u;
    for (std::size_t i = 0; i < 8 * size; ++i) {
        std::uint32_t const bit = (c ^ bytes[i / 8] >> i % 8) & 1;
        c = c >> 1 ^ 0xEDB88320u * bit;
    }
    return ~c;
}
