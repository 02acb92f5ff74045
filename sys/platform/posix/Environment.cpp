#include "sys/platform/Environment.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace sys::platform {

bool environmentValue(char const* name, std::string& value) {
    // Asked for "A=B", the C library would take a part of A's value for the name.
    char const* const found = std::strchr(name, '=') == nullptr ? std::getenv(name) : nullptr;
    if (found == nullptr) {
        return false;
    }
    value = found;
    return true;
}

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    for (char const* const* entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        entries.emplace_back(*entry);
    }
    return entries;
}

}  // namespace sys::platform
