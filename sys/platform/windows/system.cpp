#include "sys/platform/windows/system.h"

#include <winsock2.h>

#include <cerrno>

namespace sys::platform {

namespace {

constexpr struct {
    unsigned long system;
    int error;
} errorTable[] = {
    {ERROR_FILE_NOT_FOUND, ENOENT},
    {ERROR_PATH_NOT_FOUND, ENOENT},
    {ERROR_INVALID_NAME, ENOENT},
    {ERROR_BAD_PATHNAME, ENOENT},
    {ERROR_BAD_NETPATH, ENOENT},
    {ERROR_BAD_NET_NAME, ENOENT},
    {ERROR_INVALID_DRIVE, ENOENT},
    {ERROR_NOT_READY, ENOENT},
    {ERROR_MOD_NOT_FOUND, ENOENT},
    {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    {ERROR_ACCESS_DENIED, EACCES},
    {ERROR_CANNOT_MAKE, EACCES},
    {ERROR_WRITE_PROTECT, EROFS},
    {ERROR_SHARING_VIOLATION, EBUSY},
    {ERROR_LOCK_VIOLATION, EBUSY},
    {ERROR_BUSY, EBUSY},
    {ERROR_INVALID_HANDLE, EBADF},
    {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    {ERROR_OUTOFMEMORY, ENOMEM},
    {ERROR_NOT_SAME_DEVICE, EXDEV},
    {ERROR_NOT_SUPPORTED, ENOTSUP},
    {ERROR_FILE_EXISTS, EEXIST},
    {ERROR_ALREADY_EXISTS, EEXIST},
    {ERROR_INVALID_PARAMETER, EINVAL},
    {ERROR_NEGATIVE_SEEK, EINVAL},
    {ERROR_BROKEN_PIPE, EPIPE},
    {ERROR_NO_DATA, EPIPE},
    {ERROR_DISK_FULL, ENOSPC},
    {ERROR_HANDLE_DISK_FULL, ENOSPC},
    {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
    {ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
    {ERROR_DIRECTORY, ENOTDIR},
    {ERROR_CANT_RESOLVE_FILENAME, ELOOP},
    {WSAEINTR, EINTR},
    {WSAEBADF, EBADF},
    {WSAEACCES, EACCES},
    {WSAEFAULT, EFAULT},
    {WSAEINVAL, EINVAL},
    {WSAEMFILE, EMFILE},
    {WSAEWOULDBLOCK, EWOULDBLOCK},
    {WSAEINPROGRESS, EINPROGRESS},
    {WSAEALREADY, EALREADY},
    {WSAENOTSOCK, ENOTSOCK},
    {WSAEDESTADDRREQ, EDESTADDRREQ},
    {WSAEMSGSIZE, EMSGSIZE},
    {WSAEPROTOTYPE, EPROTOTYPE},
    {WSAENOPROTOOPT, ENOPROTOOPT},
    {WSAEPROTONOSUPPORT, EPROTONOSUPPORT},
    {WSAEOPNOTSUPP, EOPNOTSUPP},
    {WSAEAFNOSUPPORT, EAFNOSUPPORT},
    {WSAEADDRINUSE, EADDRINUSE},
    {WSAEADDRNOTAVAIL, EADDRNOTAVAIL},
    {WSAENETDOWN, ENETDOWN},
    {WSAENETUNREACH, ENETUNREACH},
    {WSAENETRESET, ENETRESET},
    {WSAECONNABORTED, ECONNABORTED},
    {WSAECONNRESET, ECONNRESET},
    {WSAENOBUFS, ENOBUFS},
    {WSAEISCONN, EISCONN},
    {WSAENOTCONN, ENOTCONN},
    {WSAESHUTDOWN, EPIPE},
    {WSAETIMEDOUT, ETIMEDOUT},
    {WSAECONNREFUSED, ECONNREFUSED},
    {WSAELOOP, ELOOP},
    {WSAENAMETOOLONG, ENAMETOOLONG},
    {WSAEHOSTUNREACH, EHOSTUNREACH},
};

}  // namespace

int errnoOf(unsigned long error) {
    for (auto const& row : errorTable) {
        if (row.system == error) {
            return row.error;
        }
    }
    return EIO;
}

int negativeLastError() {
    return -errnoOf(GetLastError());
}

int resultOf(bool succeeded) {
    return succeeded ? 0 : negativeLastError();
}

namespace {

/// A path of a directory is limited to 260 characters minus a short file name.
std::size_t const longestPlainPath = 247;

}  // namespace

std::wstring toUtf16(std::string_view text) {
    auto const length = static_cast<int>(text.size());
    int const needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), needed);
    return result;
}

std::string toUtf8(std::wstring_view text) {
    auto const length = static_cast<int>(text.size());
    int const needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

std::wstring systemPath(char const* path) {
    std::wstring const plain = toUtf16(path);
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
