#pragma once

/// The CRC-32 of IEEE 802.3 (zlib, PNG, Ethernet): reflected polynomial 0xEDB88320.
/// The value carried from call to call is the finished CRC of the data so far; it starts at 0, so
/// data may be split over any number of calls.
namespace core::crc32 {

/// See core::crc::init.
int init();

/// Sets the running value to its start, 0.
void Start(unsigned int& crc);

/// The CRC of the data behind crc, continued over length bytes; crc itself when length is below 1.
unsigned int update(void const* data, int length, unsigned int crc);
/// The same over one byte.
unsigned int update(unsigned char byte, unsigned int crc);
/// The same over the four bytes of value, least or most significant first.
unsigned int updatele(unsigned int value, unsigned int crc);
unsigned int updatebe(unsigned int value, unsigned int crc);

}  // namespace core::crc32
