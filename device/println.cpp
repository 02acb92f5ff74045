#include "device/println.h"

#include <mutex>

#include "core/console/Console.h"

namespace device {

void println(core::String const& text) {
    static std::mutex oneAtATime;
    std::lock_guard const locked(oneAtATime);
    core::Console::write(text, true);
}

}  // namespace device
