#pragma once

#include <string>
#include <string_view>

#include "sys/platform/Files.h"

// Errors and strings of Win32 calls in the form of the platform's headers: see
// sys/platform/Files.h. Strings are UTF-8 there and UTF-16 in Win32 calls.

namespace sys::platform {

/// Returns the errno value for an error number of Win32 or WinSock, EIO for an unknown one.
int errnoOf(unsigned long error);

/// Returns the negative errno value of the calling thread's last failed call.
int negativeLastError();

/// Converts the result of a call that returns false on failure.
int resultOf(bool succeeded);

/// Convert a string; invalid sequences become the replacement character.
std::wstring toUtf16(std::string_view text);
std::string toUtf8(std::wstring_view text);

/// Converts a path for Win32 file calls. A path longer than their usual limit becomes absolute and
/// gets the prefix that removes the limit.
std::wstring systemPath(char const* path);

/// Stores the absolute path of an open file or directory, without links, in the form without a
/// length limit.
int pathOf(FileHandle file, std::wstring& path);

}  // namespace sys::platform
