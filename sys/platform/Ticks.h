#pragma once

#include <cstdint>

namespace sys::platform {

/// The system's millisecond tick: 32 bits wide, it wraps to 0 after about 49.7 days.
std::uint32_t tickCount();

/// Sleeps the whole time, signals or not; 0 ms gives up the rest of the time slice.
void sleepMilliseconds(std::uint32_t ms);

}  // namespace sys::platform
