#pragma once

#include <string>
#include <vector>

namespace sys::platform {

/// The value of a variable of the process's environment; false when there is none of that name.
bool environmentValue(char const* name, std::string& value);

/// All entries, each a name, "=" and its value, in the environment's own order.
std::vector<std::string> environmentEntries();

}  // namespace sys::platform
