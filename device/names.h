#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The words for the numbers of the protocol, in what the device prints and in scenarios.
namespace device {

/// The code of a notification; "Unknown" for one that the protocol does not have.
char const* nameOfCode(std::uint32_t code);

/// Return the number of a name, ignoring case; none for an unknown name.
std::optional<std::uint32_t> codeOfName(std::string_view name);
/// A restart kind or a device status.
std::optional<std::uint32_t> valueOfName(std::string_view name);

}  // namespace device
