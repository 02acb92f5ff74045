#include "core/crc/crc16.h"

namespace core::crc16 {

void Start(unsigned short& crc) {
    crc = 0;
}

unsigned short xmodem_update(unsigned char const* data, int length, unsigned short crc) {
    for (int i = 0; i < length; ++i) {
        crc = xmodem_update(data[i], crc);
    }
    return crc;
}

unsigned short xmodem_update(unsigned char byte, unsigned short crc) {
    unsigned int c = crc ^ static_cast<unsigned int>(byte) << 8;
    for (int bit = 0; bit < 8; ++bit) {
        c = c << 1 ^ ((c & 0x8000) != 0 ? 0x1021u : 0u);
    }
    return static_cast<unsigned short>(c);
}

}  // namespace core::crc16

namespace core {

void Crc16::Update(void const* data, int length) {
    value_ = crc16::xmodem_update(static_cast<unsigned char const*>(data), length, value_);
}

void Crc16::Update(Buffer const& bytes) {
    Update(bytes.GetData(), bytes.GetSize());
}

void Crc16::Update(String const& text) {
    Update(text.getCString(), text.GetLength());
}

void Crc16::Update(unsigned char byte) {
    value_ = crc16::xmodem_update(byte, value_);
}

}  // namespace core
