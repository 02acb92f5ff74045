#include "core/crc/crc32.h"

#include <cstddef>
#include <cstdint>

#include "core/crc/crc32Ways.h"

int core::crc::init() {
    return crc32::init();
}

namespace core::crc32 {

int init() {
    return 0;
}

void Start(unsigned int& crc) {
    crc = 0;
}

unsigned int update(void const* data, int length, unsigned int crc) {
    if (length < 1) {
        return crc;
    }
    auto const* bytes = static_cast<unsigned char const*>(data);
    auto size = static_cast<std::size_t>(length);
    auto const calculate = size < shortSize ? updateWithTables : supportedWays().front().update;
    return ~calculate(bytes, size, ~crc);
}

unsigned int update(unsigned char byte, unsigned int crc) {
    return update(&byte, 1, crc);
}

unsigned int updatele(unsigned int value, unsigned int crc) {
    unsigned char const bytes[] = {
        static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
        static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
    return update(bytes, sizeof bytes, crc);
}

unsigned int updatebe(unsigned int value, unsigned int crc) {
    unsigned char const bytes[] = {
        static_cast<unsigned char>(value >> 24), static_cast<unsigned char>(value >> 16),
        static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value)};
    return update(bytes, sizeof bytes, crc);
}

}  // namespace core::crc32

namespace core {

void Crc32::Update(void const* data, int length) {
    value_ = crc32::update(data, length, value_);
}

void Crc32::Update(Buffer const& bytes) {
    Update(bytes.GetData(), bytes.GetSize());
}

void Crc32::Update(String const& text) {
    Update(text.getCString(), text.GetLength());
}

void Crc32::Update(unsigned char byte) {
    value_ = crc32::update(byte, value_);
}

void Crc32::Update(unsigned int value) {
    value_ = crc32::updatele(value, value_);
}

void Crc32::UpdateInvertByteOrder(unsigned int value) {
    value_ = crc32::updatebe(value, value_);
}

}  // namespace core
