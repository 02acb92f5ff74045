#include "core/crc/crc32.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "update/session/exchange.h"

namespace {

std::uint32_t word(std::string const& bytes, std::size_t index) {
    std::uint32_t value = 0;
    for (char const byte : bytes.substr(4 * index, 4)) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

}  // namespace

/// Compares the check of a record with one word by word.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string bytes = Input(data, size).Bytes(update::recordSize);
    bytes.resize(update::recordSize);
    update::UpdateNotification record;
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(&record));

    auto const failure = update::checkResponse(record);

    require(record.magic == word(bytes, 0) && record.code == word(bytes, 1) &&
            record.value == word(bytes, 2) && record.crc == word(bytes, 3));
    bool const error = record.code == 0x80000001 || record.code == 0x80000002;
    bool const valid =
        record.magic == 0xE8B47CC3 && record.crc == core::crc32::update(bytes.data(), 12, 0);
    require(!failure == (valid && !error));
    require(!failure || failure->status.has_value() == valid);
    require(!failure || !failure->fault.title.IsEmpty());
    return 0;
}
