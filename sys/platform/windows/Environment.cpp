#include "sys/platform/Environment.h"

#include <windows.h>

#include <cstring>

#include "sys/platform/windows/text.h"

namespace sys::platform {

bool environmentValue(char const* name, std::string& value) {
    // Names that hold "=" belong to the command interpreter, which keeps each drive's folder there.
    if (std::strchr(name, '=') != nullptr) {
        return false;
    }
    std::wstring const wideName = wide(name);
    std::wstring found;
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        DWORD const length = GetEnvironmentVariableW(wideName.c_str(), found.data(),
                                                     static_cast<DWORD>(found.size()));
        if (length == 0 && GetLastError() != ERROR_SUCCESS) {
            return false;
        }
        if (length <= found.size()) {
            found.resize(length);
            value = narrow(found);
            return true;
        }
        found.resize(length);  // what is needed, the closing 0 included
    }
}

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    wchar_t* const block = GetEnvironmentStringsW();
    if (block == nullptr) {
        return entries;
    }
    for (wchar_t const* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        entries.push_back(narrow(entry));
    }
    FreeEnvironmentStringsW(block);
    return entries;
}

}  // namespace sys::platform
