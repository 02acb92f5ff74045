#pragma once

#include <cstdint>

#include "core/text/String.h"

/// The constants and encodings of the archive format; see docs/archive-format.md.
namespace core::archive {

inline constexpr char magic[] = "QXRB5129";

inline constexpr unsigned oldestVersion = 0x00010000;
/// The only version whose descriptors include owner, group and command line.
inline constexpr unsigned newestVersion = 0x00020000;

enum HeaderFlag : unsigned {
    uniqueIdFlag = 1U << 31,
    sourceIdFlag = 1U << 30,
    targetIdFlag = 1U << 29,
    cryptHeadersFlag = 1U << 27,
    cryptDataFlag = 1U << 26,
    attributeCountMask = 0x3FF,
};

/// Bits of a file's flags; if neither is set, the archive's crypt mode decides.
enum FileFlag : unsigned {
    alwaysScrambled = 0x10,
    neverScrambled = 0x20,
};

// Sizes are in bytes, capacities of text slots in UTF-16 units.

inline constexpr int headerSize = 16;
inline constexpr int wordSize = 8;  ///< key block, unique ID, file count
inline constexpr int textUnits = 64;
inline constexpr int textSize = 2 * textUnits;  ///< source ID, target ID, attribute
inline constexpr int largestDescriptorSize = 4096;
inline constexpr int trailerSize = 16;

/// Returns the size of a file's descriptor.
constexpr int descriptorSize(unsigned version) {
    return version == newestVersion ? largestDescriptorSize : 3840;
}

/// Returns the little-endian Word at bytes.
template <class Word>
[[nodiscard]] Word getWord(unsigned char const* bytes) {
    Word word = 0;
    for (unsigned i = 0; i < sizeof word; ++i) {
        word = static_cast<Word>(word | static_cast<Word>(bytes[i]) << (8 * i));
    }
    return word;
}

/// Stores word at bytes, little-endian.
template <class Word>
void putWord(Word word, unsigned char* bytes) {
    for (unsigned i = 0; i < sizeof word; ++i) {
        bytes[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

// A text slot has a fixed number of little-endian UTF-16 units. A zero unit ends a text shorter
// than its slot.

/// Returns the text of a slot as valid UTF-8; each unpaired surrogate becomes U+FFFD.
[[nodiscard]] String readTextSlot(unsigned char const* slot, int units);

enum class SlotResult { written, tooLong, notUtf8 };
/// Fills the slot, whose content is valid only if all of text fits.
[[nodiscard]] SlotResult writeTextSlot(String const& text, unsigned char* slot, int units);

}  // namespace core::archive
