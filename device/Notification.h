#pragma once

#include <cstdint>

namespace device {

/// What a device says, without what makes it a record.
struct Notification {
    std::uint32_t code;
    std::uint32_t value;
};

}  // namespace device
