#pragma once

/// The numbers of the archive format, which docs/archive-format.md describes. Integers in an
/// archive are little-endian.
namespace core::archive {

inline constexpr char magic[] = "QXRB5129";

inline constexpr unsigned oldestVersion = 0x00010000;
/// The only version whose descriptors have room for owner, group and command line.
inline constexpr unsigned newestVersion = 0x00020000;

enum HeaderFlag : unsigned {
    uniqueIdFlag = 1U << 31,
    sourceIdFlag = 1U << 30,
    targetIdFlag = 1U << 29,
    cryptHeadersFlag = 1U << 27,
    cryptDataFlag = 1U << 26,
    attributeCountMask = 0x3FF,
};

/// Bits of a file's flags; without either the archive's crypt mode decides.
enum FileFlag : unsigned {
    alwaysScrambled = 0x10,
    neverScrambled = 0x20,
};

// Sizes in bytes, of texts in UTF-16 units.

inline constexpr int headerSize = 16;
inline constexpr int wordSize = 8;  ///< key block, unique ID, file count
inline constexpr int textUnits = 64;
inline constexpr int textSize = 2 * textUnits;  ///< source ID, target ID, attribute
inline constexpr int largestDescriptorSize = 4096;
inline constexpr int trailerSize = 16;

/// The size of a file's descriptor.
constexpr int descriptorSize(unsigned version) {
    return version == newestVersion ? largestDescriptorSize : 3840;
}

}  // namespace core::archive
