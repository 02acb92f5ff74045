#pragma once

#include <string_view>

namespace sys {

/// Whether the whole name matches a pattern in which "*" stands for any characters, none included,
/// and "?" for any one byte. Every other character stands for itself.
bool matchesPattern(std::string_view name, std::string_view pattern);

}  // namespace sys
