#pragma once

#include <cstdint>

#include "update/protocol/wire.h"

namespace update {

/// Updater to device, right behind the file's last byte. Unlike in the header the magic stands at
/// the end and the fields have another order: devices rely on both.
struct UpdateTransferTrailer {
    std::uint32_t fileSize = 0;     ///< bytes, as in the request
    std::uint32_t fileCrc = 0;      ///< as in the request
    std::uint32_t acceptToken = 0;  ///< as in the header
    std::uint32_t magic = wireMagic;
};

}  // namespace update
