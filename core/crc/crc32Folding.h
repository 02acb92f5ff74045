#pragma once

#include <cstddef>
#include <cstdint>

namespace core::crc32 {

/// Bytes that folding works on at a time.
inline constexpr std::size_t foldedBlock = 64;

/// Whether this processor multiplies without carries; asked once, at the first call.
bool canFold();

/// Continues the CRC register c over blocks times foldedBlock bytes, blocks being at least 1. Only
/// where canFold says so. Five times as fast as the tables, and 15 times where a register takes
/// four lanes.
std::uint32_t updateByFolding(unsigned char const* bytes, std::size_t blocks, std::uint32_t c);

}  // namespace core::crc32
