#pragma once

#include <cstddef>
#include <cstdint>

namespace core::crc32 {

/// Continues the CRC register c over size bytes with eight tables, eight bytes at a time: the
/// portable way, and the one for every tail. The register is the running value inverted.
std::uint32_t updateWithTables(unsigned char const* bytes, std::size_t size, std::uint32_t c);

}  // namespace core::crc32
