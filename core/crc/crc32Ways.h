#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The ways to calculate a CRC-32. Each continues the CRC register, which is the inverted running
// value. Thread-safe.

namespace core::crc32 {

/// Returns the register c continued over size bytes, by tables: works on every processor and is the
/// fastest way for less than shortSize bytes.
std::uint32_t updateWithTables(unsigned char const* bytes, std::size_t size, std::uint32_t c);

inline constexpr std::size_t shortSize = 64;

/// A way with its name, unique among the ways of all processors.
struct Way {
    char const* name;
    /// Returns the register c continued over size bytes.
    std::uint32_t (*update)(unsigned char const* bytes, std::size_t size, std::uint32_t c);
};

/// Returns the ways that the CPU supports, the fastest first and the tables last; detected on the
/// first call.
std::span<Way const> supportedWays();

}  // namespace core::crc32
