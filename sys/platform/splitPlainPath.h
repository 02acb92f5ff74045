#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sys::platform {

/// Splits a path as FilesBelow.h has it into its names. False when one of them is empty, ".", ".."
/// or holds a character of reserved.
bool splitPlainPath(std::string_view path, char const* reserved, std::vector<std::string>& names);

}  // namespace sys::platform
