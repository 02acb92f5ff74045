#pragma once

#include <limits>

#include "sys/platform/Sockets.h"

namespace core {

/// 1 IPv4, 2 IPv6, anything else unspecified.
using SocketDomain = sys::platform::SocketDomain;
/// 1 stream, 2 datagram, anything else unspecified.
using SocketType = sys::platform::SocketType;

/// Return the platform's numbers. Each uses only its own argument, although all take both.
int GetPosixDomain(SocketDomain domain, SocketType type);
int GetPosixType(SocketDomain domain, SocketType type);
int GetPosixProtocol(SocketDomain domain, SocketType type);

/// The port of an address without a port.
inline constexpr int noPort = std::numeric_limits<int>::min();

/// The result of a network operation: 0 for success, else the reason of the failure.
using SocketResult = unsigned int;

/// The reasons that the library itself produces; SocketTypes.cpp contains the whole table.
namespace socket_result {
inline constexpr SocketResult success = 0;
inline constexpr SocketResult failed = 1;
inline constexpr SocketResult wrongState = 4;  ///< already open, or not open
inline constexpr SocketResult invalid = 11;
inline constexpr SocketResult noAddress = 12;  ///< the name has no address
inline constexpr SocketResult emptyAddress = 13;
}  // namespace socket_result

/// Returns the result for an errno value. 0 is success, or failed if force is set.
SocketResult SocketResultFrom_errno(int error, bool force);
/// Returns the result for an error number of the platform's resolver; 0 is success.
SocketResult SocketResultFrom_EAI(int error);

}  // namespace core
