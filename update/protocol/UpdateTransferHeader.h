#pragma once

#include <cstdint>

#include "update/protocol/wire.h"

namespace update {

/// Updater to device, once the request has been accepted; the file's bytes follow it directly.
struct UpdateTransferHeader {
    static constexpr std::uint32_t constant = 0x00010000;

    std::uint32_t magic = wireMagic;
    std::uint32_t acceptToken = 0;  ///< the value of the device's Accepted notification
    std::uint32_t headerConstant = constant;
    std::uint32_t fileSize = 0;  ///< bytes, as in the request
};

}  // namespace update
