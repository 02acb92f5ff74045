#pragma once

#include <functional>
#include <string>
#include <vector>

namespace support {

/// Splits at line feeds; what follows the last one counts as a line when it is not empty.
std::vector<std::string> linesOf(std::string const& text);

/// The bytes of a file; none when it cannot be read.
std::string contentOf(std::string const& path);

/// What action writes to standard output.
std::string outputOf(std::function<void()> const& action);

/// Every occurrence of find in text replaced.
std::string replaced(std::string text, std::string const& find, std::string const& with);

}  // namespace support
