#pragma once

#include <cstdint>

#include "update/protocol/wire.h"

namespace update {

/// Updater to device, the first record of a connection: announces the file.
struct UpdateRequest {
    std::uint32_t magic = wireMagic;
    std::uint32_t fileSize = 0;  ///< bytes
    std::uint32_t fileCrc = 0;   ///< CRC-32 of the whole file
    std::uint32_t magicComplement = wireMagicComplement;
};

}  // namespace update
