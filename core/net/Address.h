#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/SocketResult.h"
#include "core/net/SocketTypes.h"
#include "core/net/noPort.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// Addresses as text: host "|" service. The separator is never the colon, which would collide with
/// IPv6 addresses.
class Address {
public:
    Address() = delete;

    /// Splits at the first "|": host before it, service behind it, untrimmed. Without one, or with
    /// one as the very first character, 11 is returned and host and service stay as they are.
    static SocketResult DecomposeAddress(String const& text, String& host, String& service);
    static String ComposeAddress(String const& host, String const& service);
    static void ComposeAddress(String const& host, String const& service, String& out);
    /// The port that a service names in decimal; noPort if it is not a number. A number outside the
    /// int range saturates, a negative one at the value next to noPort: it is a port, if a bad one.
    static int PortOf(String const& service);

    /// Resolves text; without a usable "|" it is all host. Empty when nothing is found; the
    /// resolver's reason is not kept. The flag has no effect in any of the forms.
    static ClassRef<AddressInfo> GetInfo(String const& text, SocketDomain domain, SocketType type,
                                         bool flag);
    /// The same for a stream in any domain.
    static ClassRef<AddressInfo> GetInfo(String const& text, bool flag);
    /// The same in IPv4 first and, only when that gives nothing, in IPv6.
    static ClassRef<AddressInfo> GetInfo(String const& text, SocketType type, bool flag);
};

}  // namespace core
