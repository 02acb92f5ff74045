#pragma once

#include <cstdint>

namespace update {

/// Why a device refuses or gives up: the value of an error notification.
enum class DeviceStatus : std::uint32_t {
    InvalidMagic = 1,
    InvalidCrc = 2,
    InvalidDataSize = 3,
    InvalidMagicComplement = 4,
    DataSizeTooBig = 5,
    SystemBusy = 6,
    InvalidPassword = 7,
    InvalidVersion = 8,
    Timeout = 9,
    ExchangeFailed = 10,
    ReadWriteError = 11,
    WrongFileCrc = 12,
    Interrupted = 13,
    GhostError = 14,
    InvalidTarget = 15,
};

}  // namespace update
