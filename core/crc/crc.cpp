#include "core/crc/crc.h"

#include "core/crc/crc32.h"

namespace core::crc {

int init() {
    return crc32::init();
}

}  // namespace core::crc
