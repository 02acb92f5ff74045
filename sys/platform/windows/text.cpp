#include "sys/platform/windows/text.h"

#include <windows.h>

namespace sys::platform {

namespace {

/// A folder's path may not be longer than 260 characters less a short file name.
std::size_t const longestPlainPath = 247;

}  // namespace

std::wstring wide(std::string_view text) {
    auto const length = static_cast<int>(text.size());
    int const needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), needed);
    return result;
}

std::string narrow(std::wstring_view text) {
    auto const length = static_cast<int>(text.size());
    int const needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

std::wstring systemPath(char const* path) {
    std::wstring const plain = wide(path);
    if (plain.size() <= longestPlainPath || plain.starts_with(L"\\\\?\\")) {
        return plain;
    }
    DWORD const needed = GetFullPathNameW(plain.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    full.resize(GetFullPathNameW(plain.c_str(), needed, full.data(), nullptr));
    if (full.starts_with(L"\\\\")) {
        return L"\\\\?\\UNC" + full.substr(1);
    }
    return L"\\\\?\\" + full;
}

}  // namespace sys::platform
