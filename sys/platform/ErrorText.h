#pragma once

#include <string>

namespace sys::platform {

/// Returns the operating system's message for one of its error numbers, without a line end; the C
/// library's for a number that the system does not know.
std::string errorText(int number);

}  // namespace sys::platform
