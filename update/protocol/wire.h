#pragma once

#include <array>
#include <bit>
#include <cstdint>

/// What all records of the update protocol have in common: 16 bytes, four 32-bit words, big-endian
/// on the wire and in host order in memory.
namespace update {

inline constexpr int recordSize = 16;
inline constexpr std::uint32_t wireMagic = 0xE8B47CC3;
inline constexpr std::uint32_t wireMagicComplement = ~wireMagic;

/// A word as its other end reads it; the same function goes both ways.
constexpr std::uint32_t bigEndian(std::uint32_t word) {
    if constexpr (std::endian::native == std::endian::big) {
        return word;
    }
    return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
}

/// A record in the other byte order: from memory to the wire or back.
template <class Record>
constexpr Record swapped(Record const& record) {
    static_assert(sizeof(Record) == recordSize);
    auto words = std::bit_cast<std::array<std::uint32_t, 4>>(record);
    for (std::uint32_t& word : words) {
        word = bigEndian(word);
    }
    return std::bit_cast<Record>(words);
}

}  // namespace update
