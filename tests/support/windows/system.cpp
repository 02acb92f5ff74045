#include "tests/support/system.h"

#include <windows.h>

#include <cstring>

namespace support {

bool setVariable(char const* name, char const* value) {
    std::size_t const tooLong = 32'767;
    return (value == nullptr || std::strlen(value) < tooLong) &&
           SetEnvironmentVariableA(name, value) != 0;
}

long openDescriptors() {
    DWORD count = 0;
    return GetProcessHandleCount(GetCurrentProcess(), &count) != 0 ? static_cast<long>(count) : 0;
}

}  // namespace support
