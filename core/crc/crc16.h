#pragma once

#include "core/text/Buffer.h"
#include "core/text/String.h"

/// The CRC-16 of XMODEM: polynomial 0x1021, most significant bit first, without inversions. For
/// short records: it is calculated bit by bit.
namespace core::crc16 {

/// Sets crc to the start value 0.
void Start(unsigned short& crc);

/// Returns crc continued over length bytes; crc itself if length is below 1.
unsigned short xmodem_update(unsigned char const* data, int length, unsigned short crc);
/// Returns crc continued over one byte.
unsigned short xmodem_update(unsigned char byte, unsigned short crc);

}  // namespace core::crc16

namespace core {

/// A running CRC-16.
class Crc16 {
public:
    explicit Crc16(unsigned short start = 0) : value_(start) {}

    void Update(void const* data, int length);
    void Update(Buffer const& bytes);
    /// Adds the characters without the terminating NUL.
    void Update(String const& text);
    void Update(unsigned char byte);

    unsigned short Get() const { return value_; }
    void Restart(unsigned short start = 0) { value_ = start; }

private:
    unsigned short value_;
};

}  // namespace core
