#include "sys/platform/Ticks.h"

#include <chrono>
#include <thread>

namespace sys::platform {

std::uint32_t tickCount() {
    using namespace std::chrono;
    // Counted from a second before the first call, not from the machine's start: a run of less
    // than 49 days never meets the wrap by chance, and no tick is 0, which stopwatches treat as
    // "never".
    static auto const origin = steady_clock::now() - seconds(1);
    return static_cast<std::uint32_t>(
        duration_cast<milliseconds>(steady_clock::now() - origin).count());
}

void sleepMilliseconds(std::uint32_t ms) {
    if (ms == 0) {
        std::this_thread::yield();
        return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace sys::platform
