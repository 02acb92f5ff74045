#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/SocketTypes.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// Addresses as text: host "|" service. The separator is not a colon, because IPv6 addresses
/// contain colons.
class Address {
public:
    Address() = delete;

    /// Splits text at the first "|" into host and service, untrimmed, and returns 0. If there is
    /// none, or it comes first, returns 11 and leaves host and service unchanged.
    static SocketResult DecomposeAddress(String const& text, String& host, String& service);
    static String ComposeAddress(String const& host, String const& service);
    static void ComposeAddress(String const& host, String const& service, String& out);
    /// Returns the port of a service in decimal; noPort if it is not a number. Numbers saturate at
    /// the limits of int, negative ones at noPort + 1: they are invalid ports, but not missing.
    static int PortOf(String const& service);

    /// Resolves text; if DecomposeAddress fails, all of text is the host. Returns an empty
    /// reference on failure. The flag is ignored in all forms.
    static ClassRef<AddressInfo> GetInfo(String const& text, SocketDomain domain, SocketType type,
                                         bool flag);
    /// Resolves text for a stream in any domain.
    static ClassRef<AddressInfo> GetInfo(String const& text, bool flag);
    /// Resolves text in IPv4 and, only if that fails, in IPv6.
    static ClassRef<AddressInfo> GetInfo(String const& text, SocketType type, bool flag);
};

}  // namespace core
