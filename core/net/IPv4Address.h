#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/SocketTypes.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// An IPv4 address with an optional port; a plain value. Octets are indexed by significance: index
/// 3 is the leftmost number of the text, index 0 the rightmost.
class IPv4Address {
public:
    /// The port of an address without a port.
    static constexpr int noPort = core::noPort;

    /// 0.0.0.0 without a port.
    IPv4Address() = default;
    IPv4Address(IPv4Address const& other) = default;
    IPv4Address(IPv4Address const& other, int port);
    /// From the octets of the text, left to right, each truncated to 8 bits.
    IPv4Address(int a, int b, int c, int d);
    IPv4Address(int a, int b, int c, int d, int port);
    /// From the result of GetAsUInt32.
    explicit IPv4Address(unsigned int number);
    IPv4Address(unsigned int number, int port);
    /// Parses text with Set; parts that Set leaves unchanged are 0 and no port.
    explicit IPv4Address(String const& text);
    IPv4Address& operator=(IPv4Address const& other) = default;

    void Set(IPv4Address const& other, int port);
    void Set(int a, int b, int c, int d);
    void Set(int a, int b, int c, int d, int port);
    void Set(unsigned int number);
    void Set(unsigned int number, int port);

    /// Parses "A.B.C.D" or "A.B.C.D|Port", with optional spaces around host and port; returns true
    /// if all four octets are valid. Without exactly four items, all octets become 0. At an item
    /// that is not a number up to 255, parsing ends: the octets before it are stored, which callers
    /// rely on that only check IsNull, and the rest is unchanged. A port that is not a number means
    /// no port; numbers saturate as by Address::PortOf.
    bool Set(String const& text);
    /// Whether text begins with four valid octets. More lenient than Set: accepts 1.2.3.4.5.
    static bool IsValid(String const& text);

    /// Whether all octets are 0; ignores the port.
    bool IsNull() const;
    /// Returns the octet at index, which must be from 0 to 3.
    unsigned char& operator[](int index) { return octets_[index]; }
    unsigned char operator[](int index) const { return octets_[index]; }
    /// Stores the low 8 bits of value; an index outside 0 to 3 is ignored.
    void SetByte(int index, int value);
    void VoidAddress();

    /// Stores any value, unchecked.
    void SetPortA(int port) { port_ = port; }
    void VoidPort() { port_ = noPort; }
    int Port() const { return port_; }

    /// Returns the address in host byte order: 192.168.0.10 is 0xC0A8000A.
    unsigned int GetAsUInt32() const;
    /// Returns this address as a netmask, with all bits above the lowest set bit set as well:
    /// 255.0.255.0 counts as 255.255.255.0. Returns 0 for 0.0.0.0.
    unsigned int GetAsUInt32Mask() const;
    /// Return the first address of this address's network under a mask, the last one, and the one
    /// after the first or before the last. They have no port.
    IPv4Address GetNetwork(IPv4Address const& mask) const;
    IPv4Address GetBroadcast(IPv4Address const& mask) const;
    IPv4Address GetPreferredGateway(IPv4Address const& mask, bool first) const;
    bool SameAs(IPv4Address const& other, bool withPort) const;

    /// Returns "A.B.C.D", or with withPort and a port "A.B.C.D|Port".
    String GetAsString(bool withPort) const;
    static String ToString(int a, int b, int c, int d);
    static String ToString(int a, int b, int c, int d, int port);

    /// Resolves GetAsString(true); see Address::GetInfo.
    ClassRef<AddressInfo> GetAddressInfo(bool flag) const;
    ClassRef<AddressInfo> GetAddressInfo(SocketDomain domain, SocketType type, bool flag) const;

private:
    unsigned char octets_[4] = {};
    int port_ = noPort;
};

}  // namespace core
