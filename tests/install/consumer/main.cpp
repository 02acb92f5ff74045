#include "core/crc/crc32.h"
#include "core/net/IPv4Address.h"

int main() {
    core::Crc32 crc;
    crc.Update(core::String("123456789"));
    core::IPv4Address const address("10.0.0.7|3007");
    core::String::format("%1 %2").argi(1, crc.Get()).argi(2, address.GetAsString(true)).print(true);
}
