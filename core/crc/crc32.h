#pragma once

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core::crc {

/// Returns 0: checksums can be used. Programs call it at start-up, but need not: the tables are
/// constants, so that no update ever reads empty ones.
int init();

}  // namespace core::crc

/// The CRC-32 of IEEE 802.3 (zlib, PNG, Ethernet): reflected polynomial 0xEDB88320. The running
/// value is the finished CRC of the data so far and starts at 0: data can be split over any number
/// of calls. Thread-safe.
namespace core::crc32 {

/// Same as core::crc::init.
int init();

/// Sets crc to the start value 0.
void Start(unsigned int& crc);

/// Returns crc continued over length bytes; crc itself if length is below 1.
unsigned int update(void const* data, int length, unsigned int crc);
/// Returns crc continued over one byte.
unsigned int update(unsigned char byte, unsigned int crc);
/// Returns crc continued over the four bytes of value, least or most significant byte first.
unsigned int updatele(unsigned int value, unsigned int crc);
unsigned int updatebe(unsigned int value, unsigned int crc);

}  // namespace core::crc32

namespace core {

/// A running CRC-32. In this header because Crc32.h and crc32.h are one file on Windows.
class Crc32 {
public:
    explicit Crc32(unsigned int start = 0) : value_(start) {}

    void Update(void const* data, int length);
    void Update(Buffer const& bytes);
    /// Adds the characters without the terminating NUL.
    void Update(String const& text);
    void Update(unsigned char byte);
    /// Adds the four bytes of value, least significant byte first.
    void Update(unsigned int value);
    /// Adds the four bytes of value, most significant byte first.
    void UpdateInvertByteOrder(unsigned int value);

    unsigned int Get() const { return value_; }
    void Restart(unsigned int start = 0) { value_ = start; }

private:
    unsigned int value_;
};

}  // namespace core
