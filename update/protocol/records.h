#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/crc/crc32.h"

/// The records of the update protocol and its numbers. Each record has 16 bytes, four 32-bit words:
/// big-endian on the wire, in host order in memory.
namespace update {

inline constexpr int recordSize = 16;  ///< bytes
inline constexpr std::uint32_t wireMagic = 0xE8B47CC3;
inline constexpr std::uint32_t wireMagicComplement = ~wireMagic;

inline constexpr int defaultPort = 3007;
inline constexpr int largestPort = 65535;
/// The size of the largest file, in bytes: deployed updaters count with 32 bits and a sign.
inline constexpr std::uint32_t largestFile = 0x7FFF'FFFF;
/// The number of bytes of the file that both sides read, send and receive at a time. The wire does
/// not show it.
inline constexpr int chunkSize = 16384;

/// Updater to device, the first record of a connection: announces the file.
struct UpdateRequest {
    std::uint32_t magic = wireMagic;
    std::uint32_t fileSize = 0;  ///< bytes
    std::uint32_t fileCrc = 0;   ///< CRC-32 of the whole file
    std::uint32_t magicComplement = wireMagicComplement;
};

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
    std::uint32_t crc = 0;  ///< see wireCrc()
};

/// The reason of a device that rejects or aborts an update: the value of an error notification.
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

/// Updater to device, once the device has accepted the request; the file's bytes follow directly.
struct UpdateTransferHeader {
    static constexpr std::uint32_t constant = 0x00010000;

    std::uint32_t magic = wireMagic;
    std::uint32_t acceptToken = 0;  ///< the value of the device's Accepted notification
    std::uint32_t headerConstant = constant;
    std::uint32_t fileSize = 0;  ///< bytes, as in the request
};

/// Updater to device, directly after the file's last byte. Unlike in the header, the magic is last
/// and the fields are reordered; devices rely on both.
struct UpdateTransferTrailer {
    std::uint32_t fileSize = 0;     ///< bytes, as in the request
    std::uint32_t fileCrc = 0;      ///< as in the request
    std::uint32_t acceptToken = 0;  ///< as in the header
    std::uint32_t magic = wireMagic;
};

/// Whether a notification with this code reports an error.
constexpr bool isError(std::uint32_t code) {
    return code == UpdateNotification::Error || code == UpdateNotification::ErrorAlt;
}

/// Whether a notification with this code reports a stage of the installation.
constexpr bool isStage(std::uint32_t code) {
    return code >= UpdateNotification::Received && code <= UpdateNotification::Processing;
}

/// Converts a word between host order and wire order, in either direction.
constexpr std::uint32_t bigEndian(std::uint32_t word) {
    if constexpr (std::endian::native == std::endian::big) {
        return word;
    }
    return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
}

/// Converts a record between host order and wire order, in either direction.
template <class Record>
constexpr Record swapped(Record const& record) {
    static_assert(sizeof(Record) == recordSize);
    auto words = std::bit_cast<std::array<std::uint32_t, 4>>(record);
    for (std::uint32_t& word : words) {
        word = bigEndian(word);
    }
    return std::bit_cast<Record>(words);
}

/// Returns the CRC-32 of the first three words of a notification in wire order.
inline std::uint32_t wireCrc(UpdateNotification const& onWire) {
    return core::crc32::update(&onWire, offsetof(UpdateNotification, crc), 0);
}

}  // namespace update
