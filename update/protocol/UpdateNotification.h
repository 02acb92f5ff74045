#pragma once

#include <cstdint>

#include "update/protocol/wire.h"

namespace update {

/// Device to updater: every record that the device sends.
struct UpdateNotification {
    enum Code : std::uint32_t {
        Accepted = 1,  ///< value: the token that header and trailer return
        Received = 2,
        Checked = 3,
        Processing = 4,
        Complete = 5,           ///< value: a RestartKind
        Error = 0x80000001,     ///< value: a DeviceStatus
        ErrorAlt = 0x80000002,  ///< the same; devices send either
    };
    enum RestartKind : std::uint32_t {
        FirmwareRestart = 1,
        HardwareRestart = 2,
        PowerCycle = 3,
    };

    std::uint32_t magic = 0;
    std::uint32_t code = 0;
    std::uint32_t value = 0;
    std::uint32_t crc = 0;  ///< wireCrc of the record
};

/// The CRC-32 over the first three words of a record in wire order: the bytes as they travel.
std::uint32_t wireCrc(UpdateNotification const& onWire);

}  // namespace update
