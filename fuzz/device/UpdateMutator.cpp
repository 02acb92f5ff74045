#include <cstdint>
#include <cstring>

#include "core/crc/crc32.h"
#include "update/protocol/records.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

namespace {

constexpr std::size_t recordSize = update::recordSize;

template <class Record>
void put(std::uint8_t* at, Record const& record) {
    Record const onWire = update::swapped(record);
    std::memcpy(at, &onWire, recordSize);
}

/// Turns the bytes into a valid update: repairs the records and keeps the file between them.
void repairUpdate(std::uint8_t* data, std::size_t size) {
    std::uint8_t* const file = data + 2 * recordSize;
    std::size_t const fileSize = size - 3 * recordSize;
    update::UpdateRequest request;
    request.fileSize = static_cast<std::uint32_t>(fileSize);
    request.fileCrc = core::crc32::update(file, static_cast<int>(fileSize), 0);
    update::UpdateTransferHeader header;
    header.acceptToken = 1;
    header.fileSize = request.fileSize;
    update::UpdateTransferTrailer trailer;
    trailer.fileSize = request.fileSize;
    trailer.fileCrc = request.fileCrc;
    trailer.acceptToken = 1;
    put(data, request);
    put(data + recordSize, header);
    put(file + fileSize, trailer);
}

}  // namespace

/// A fuzzer hardly finds three matching records: half of the inputs get them, and some of these
/// then one wrong byte.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
    std::size_t const mutated = LLVMFuzzerMutate(data, size, capacity);
    if (seed % 2 == 0 && mutated > 3 * recordSize) {
        // The first byte selects the end of the updater.
        repairUpdate(data + 1, mutated - 1);
        if (seed % 8 == 0) {
            data[1 + seed / 8 % (mutated - 1)] ^= 1;
        }
    }
    return mutated;
}
