#pragma once

#include "sys/platform/Sockets.h"

namespace core {

/// 1 IPv4, 2 IPv6, anything else unspecified.
using SocketDomain = sys::platform::SocketDomain;
/// 1 stream, 2 datagram, anything else unspecified.
using SocketType = sys::platform::SocketType;

/// The platform's numbers. Each looks only at its own argument, although all take both.
int GetPosixDomain(SocketDomain domain, SocketType type);
int GetPosixType(SocketDomain domain, SocketType type);
int GetPosixProtocol(SocketDomain domain, SocketType type);

}  // namespace core
