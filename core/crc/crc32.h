#pragma once

#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core::crc {

/// Returns 0: checksums can be used. Programs call it at start-up, but need not: the tables are
/// constants, so that no update ever reads empty ones.
int init();

}  // namespace core::crc

/// The CRC-32 of IEEE 802.3 (zlib, PNG, Ethernet): reflected polynomial 0xEDB88320.
/// The value carried from call to call is the finished CRC of the data so far; it starts at 0, so
/// data may be split over any number of calls.
namespace core::crc32 {

/// Same as core::crc::init.
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

namespace core {

/// A CRC-32 and its running value. It shares the header of the functions because file names that
/// differ only in case are one file on Windows.
class Crc32 {
public:
    explicit Crc32(unsigned int start = 0) : value_(start) {}

    void Update(void const* data, int length);
    void Update(Buffer const& bytes);
    /// The characters without the terminator.
    void Update(String const& text);
    void Update(unsigned char byte);
    /// The four bytes of value, least significant first.
    void Update(unsigned int value);
    /// The four bytes of value, most significant first.
    void UpdateInvertByteOrder(unsigned int value);

    unsigned int Get() const { return value_; }
    void Restart(unsigned int start = 0) { value_ = start; }

private:
    unsigned int value_;
};

}  // namespace core
