#pragma once

#include "core/text/Buffer.h"
#include "core/text/String.h"

/// The CRC-16 of XMODEM: polynomial 0x1021, most significant bit first, without inversions. It is
/// worked out bit by bit and meant for short records.
namespace core::crc16 {

/// Sets the running value to its start, 0.
void Start(unsigned short& crc);

/// The CRC of the data behind crc, continued over length bytes; crc itself when length is below 1.
unsigned short xmodem_update(unsigned char const* data, int length, unsigned short crc);
/// The same over one byte.
unsigned short xmodem_update(unsigned char byte, unsigned short crc);

}  // namespace core::crc16

namespace core {

/// A CRC-16 and its running value; in the header of the functions for the reason that Crc32 gives.
class Crc16 {
public:
    explicit Crc16(unsigned short start = 0) : value_(start) {}

    void Update(void const* data, int length);
    void Update(Buffer const& bytes);
    /// The characters without the terminator.
    void Update(String const& text);
    void Update(unsigned char byte);

    unsigned short Get() const { return value_; }
    void Restart(unsigned short start = 0) { value_ = start; }

private:
    unsigned short value_;
};

}  // namespace core
