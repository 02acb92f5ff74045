#include <arm_acle.h>

#include <cstring>

#include "core/crc/crc32Ways.h"
#include "sys/platform/Process.h"

// ARMv8.0 has CRC-32 instructions as an option, later versions always. They are preferred to
// polynomial multiplication, which common boards lack, such as the Raspberry Pi 4.

namespace core::crc32 {

namespace {

std::uint32_t updateWithInstructions(unsigned char const* bytes, std::size_t size,
                                     std::uint32_t c) {
    std::uint64_t word = 0;
    for (; size >= sizeof word; size -= sizeof word, bytes += sizeof word) {
        std::memcpy(&word, bytes, sizeof word);
        c = __crc32d(c, word);
    }
    for (; size > 0; --size, ++bytes) {
        c = __crc32b(c, *bytes);
    }
    return c;
}

}  // namespace

std::span<Way const> supportedWays() {
    static constexpr Way ways[] = {{"instructions", updateWithInstructions},
                                   {"tables", updateWithTables}};
    static std::size_t const first = sys::platform::hasArmCrcInstructions() ? 0 : 1;
    return std::span(ways).subspan(first);
}

}  // namespace core::crc32
