#include "sys/platform/Screen.h"

namespace sys {

// Terminals here understand control sequences, or nothing at all.
Screen* screenOf(platform::StandardStream) {
    return nullptr;
}

std::unique_ptr<Screen> screenOf(void*) {
    return nullptr;
}

}  // namespace sys
