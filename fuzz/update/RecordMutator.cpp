#include <cstdint>
#include <cstring>

#include "core/crc/crc32.h"
#include "update/protocol/records.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

namespace {

constexpr std::size_t recordSize = update::recordSize;

void putWord(std::uint8_t* at, std::uint32_t word) {
    std::uint32_t const onWire = update::bigEndian(word);
    std::memcpy(at, &onWire, sizeof onWire);
}

/// Corrects the CRC of every record, at any offset.
void repairRecords(std::uint8_t* data, std::size_t size) {
    std::uint32_t const magic = update::bigEndian(update::wireMagic);
    for (std::size_t at = 0; at + recordSize <= size; ++at) {
        if (std::memcmp(data + at, &magic, sizeof magic) == 0) {
            putWord(data + at + 12, core::crc32::update(data + at, 12, 0));
        }
    }
}

/// Appends a record with a small code and value. Returns the new size.
std::size_t appendRecord(std::uint8_t* data, std::size_t size, unsigned seed) {
    std::uint32_t const code = seed / 16 % 8;
    putWord(data + size, update::wireMagic);
    putWord(data + size + 4, code < 6 ? code : 0x8000'0000 | (code - 5));
    putWord(data + size + 8, seed / 128 % 17);
    putWord(data + size + 12, 0);
    return size + recordSize;
}

}  // namespace

/// Three of four inputs get correct CRCs: random mutations would hardly ever produce one.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
    bool const append = seed % 16 == 1 && size + recordSize <= capacity;
    std::size_t const mutated =
        append ? appendRecord(data, size, seed) : LLVMFuzzerMutate(data, size, capacity);
    if (seed % 4 != 0) {
        repairRecords(data, mutated);
    }
    return mutated;
}
