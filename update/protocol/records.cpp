#include "update/protocol/records.h"

#include <cstddef>

#include "core/crc/crc32.h"

namespace update {

std::uint32_t wireCrc(UpdateNotification const& onWire) {
    return core::crc32::update(&onWire, offsetof(UpdateNotification, crc), 0);
}

}  // namespace update
