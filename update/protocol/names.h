#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The names of the protocol's numbers, as logs, scenarios and docs/protocol.md spell them.
namespace update {

/// Returns the name of a notification code; "Unknown" for a code that the protocol does not define.
char const* nameOfCode(std::uint32_t code);

/// Returns the name of a device status; "Unknown" for one that the protocol does not define.
char const* nameOfStatus(std::uint32_t status);

/// Returns the notification code of a name, ignoring case, or nothing for an unknown name.
std::optional<std::uint32_t> codeOfName(std::string_view name);
/// Returns the restart kind or device status of a name, ignoring case, or nothing for an unknown
/// name.
std::optional<std::uint32_t> valueOfName(std::string_view name);

}  // namespace update
