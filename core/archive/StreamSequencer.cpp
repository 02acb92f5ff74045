#include "core/archive/StreamSequencer.h"

#include <cstdint>
#include <cstring>

#include "core/archive/archiveFormat.h"
#include "core/crc/crc32.h"

namespace core {

namespace {

int const keyBits = 32;
int const keySize = 4;

bool has(StreamSequencer::CryptMode mode, StreamSequencer::CryptMode part) {
    return (static_cast<int>(mode) & static_cast<int>(part)) != 0;
}

}  // namespace

bool StreamDescriptor::IsCryptEnabled() const {
    if ((flags_ & archive::alwaysScrambled) != 0) {
        return true;
    }
    return (flags_ & archive::neverScrambled) == 0 && owner_.IsCryptDataEnabled();
}

bool StreamDescriptor::IsScrambled() const {
    return IsCryptEnabled() && owner_.GetCryptMode() != StreamSequencer::CryptMode::None;
}

void StreamDescriptor::CryptBlock(void* data, int length, unsigned long long position) const {
    if (IsScrambled()) {
        owner_.CryptBlock(data, length, position);
    }
}

StreamSequencer::StreamSequencer() {
    crc::init();
}

char const* StreamSequencer::ClassName() const {
    return "StreamSequencer";
}

bool StreamSequencer::IsCryptHeadersEnabled() const {
    return has(cryptMode_, CryptMode::Headers);
}

bool StreamSequencer::IsCryptDataEnabled() const {
    return has(cryptMode_, CryptMode::Data);
}

void StreamSequencer::SetCryptKey(unsigned key) {
    keyBlock_ = 0;
    for (int i = 0; i < keyBits; ++i, key >>= 1) {
        keyBlock_ = keyBlock_ << 2 | (key & 1) << 1;
    }
}

unsigned StreamSequencer::GetCryptKey() const {
    unsigned key = 0;
    unsigned long long block = keyBlock_;
    for (int i = 0; i < keyBits; ++i, block >>= 2) {
        key = key << 1 | static_cast<unsigned>(block >> 1 & 1);
    }
    return key;
}

void StreamSequencer::UpdateCRC(void const* data, int length) {
    crc_ = crc32::update(data, length, crc_);
}

void StreamSequencer::CryptBlock(void* data, int length, unsigned long long position) const {
    unsigned char key[keySize];
    archive::putWord<std::uint32_t>(GetCryptKey(), key);
    // The key, aligned with data and repeated to the width of a word.
    unsigned char pattern[2 * keySize];
    for (unsigned i = 0; i < sizeof pattern; ++i) {
        pattern[i] = key[(position + i) % keySize];
    }
    std::uint64_t patternWord = 0;
    std::memcpy(&patternWord, pattern, sizeof pattern);

    auto* bytes = static_cast<unsigned char*>(data);
    int left = length;
    for (; left >= static_cast<int>(sizeof pattern); left -= static_cast<int>(sizeof pattern)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, sizeof word);
        word ^= patternWord;
        std::memcpy(bytes, &word, sizeof word);
        bytes += sizeof pattern;
    }
    for (int i = 0; i < left; ++i) {
        bytes[i] = static_cast<unsigned char>(bytes[i] ^ pattern[i]);
    }
}

void StreamSequencer::ClearHeaders() {
    version_ = archive::newestVersion;
    cryptMode_ = CryptMode::None;
    keyBlock_ = 0;
    uniqueId.reset();
    sourceId.reset();
    targetId.reset();
    attributes_.Clear();
    ResetCRC();
}

}  // namespace core
