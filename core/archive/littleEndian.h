#pragma once

#include <cstdint>

namespace core::archive {

/// The Word whose least significant byte comes first in bytes.
template <class Word>
Word getWord(unsigned char const* bytes) {
    Word word = 0;
    for (unsigned i = 0; i < sizeof word; ++i) {
        word = static_cast<Word>(word | static_cast<Word>(bytes[i]) << (8 * i));
    }
    return word;
}

template <class Word>
void putWord(Word word, unsigned char* bytes) {
    for (unsigned i = 0; i < sizeof word; ++i) {
        bytes[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

}  // namespace core::archive
