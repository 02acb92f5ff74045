#pragma once

#include <string>
#include <string_view>

#include "sys/platform/Files.h"

// The program speaks UTF-8, the system's wide calls UTF-16.

namespace sys::platform {

/// The text in UTF-16; what is no UTF-8 becomes the replacement character.
std::wstring wide(std::string_view text);
/// The text in UTF-8; what is no UTF-16 becomes the replacement character.
std::string narrow(std::wstring_view text);

/// A path as the system's file calls take it: one that is too long for their plain form is made
/// absolute and gets the prefix that lifts the limit.
std::wstring systemPath(char const* path);

/// Stores the absolute path of an open file or directory, after all links, in the form without a
/// length limit. Returns 0 or a negative errno value.
int pathOf(FileHandle file, std::wstring& path);

}  // namespace sys::platform
