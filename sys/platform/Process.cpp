#include "sys/platform/Process.h"

#include <chrono>
#include <thread>

namespace sys::platform {

Arguments::Arguments(int argc, char const* const* argv) : values_(Read(argc, argv)) {
    for (std::string const& value : values_) {
        pointers_.push_back(value.c_str());
    }
}

std::uint32_t tickCount() {
    using namespace std::chrono;
    // Count from a second before the first call, not from the start of the machine: a run of less
    // than 49 days never meets the wrap, and no tick is 0, which stopwatches treat as "never".
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
