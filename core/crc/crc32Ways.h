#pragma once

#include <cstddef>
#include <cstdint>

// The two ways to calculate a CRC-32. Both continue the CRC register, which is the inverted running
// value.

namespace core::crc32 {

/// Returns the register c continued over size bytes, by eight tables: works on every processor and
/// for every size.
std::uint32_t updateWithTables(unsigned char const* bytes, std::size_t size, std::uint32_t c);

/// Number of bytes in a block of updateByFolding.
inline constexpr std::size_t foldBlockSize = 64;

/// Whether the CPU has carry-less multiplication; detected on the first call.
bool canFold();

/// Returns the register c continued over blocks * foldBlockSize bytes, blocks being at least 1.
/// Call it only if canFold. It is 5 times as fast as the tables, with 512-bit registers 15 times.
std::uint32_t updateByFolding(unsigned char const* bytes, std::size_t blocks, std::uint32_t c);

}  // namespace core::crc32
