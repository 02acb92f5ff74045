#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/noPort.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// An IPv4 address with an optional port; a plain value. Octets are stored by significance: index
/// 3 holds the leftmost number of the dotted text, index 0 the rightmost.
class IPv4Address {
public:
    /// The port of an address that has none.
    static constexpr int noPort = core::noPort;

    /// 0.0.0.0 without a port.
    IPv4Address() = default;
    IPv4Address(IPv4Address const& other) = default;
    IPv4Address(IPv4Address const& other, int port);
    /// The octets from left to right, each cut to 8 bits.
    IPv4Address(int a, int b, int c, int d);
    IPv4Address(int a, int b, int c, int d, int port);
    /// From the number that GetAsUInt32 gives.
    explicit IPv4Address(unsigned int number);
    IPv4Address(unsigned int number, int port);
    /// Parses text with Set; what Set leaves alone is 0.0.0.0 without a port.
    explicit IPv4Address(String const& text);
    IPv4Address& operator=(IPv4Address const& other) = default;

    void Set(IPv4Address const& other, int port);
    void Set(int a, int b, int c, int d);
    void Set(int a, int b, int c, int d, int port);
    void Set(unsigned int number);
    void Set(unsigned int number, int port);

    /// Parses "A.B.C.D" or "A.B.C.D|Port"; blanks around host and port are allowed. Without exactly
    /// four items all octets become 0. An item that is not a number up to 255 ends the parsing, but
    /// the octets before it are stored already: 1.2.3.999 leaves 1.2.3.0, which callers that only
    /// ask IsNull rely on. A port that is not a number gives no port; any number is taken.
    /// True when all four octets were good.
    bool Set(String const& text);
    /// Whether text begins with four good octets. More lenient than Set: 1.2.3.4.5 passes.
    static bool IsValid(String const& text);

    /// Whether all octets are 0; the port is not looked at.
    bool IsNull() const;
    /// The octet at a storage index from 0 to 3, unchecked.
    unsigned char& operator[](int index) { return octets_[index]; }
    unsigned char operator[](int index) const { return octets_[index]; }
    /// Stores the low 8 bits of value; an index outside 0 to 3 is ignored.
    void SetByte(int index, int value);
    void VoidAddress();

    /// Any 32-bit value is stored as it is.
    void SetPortA(int port) { port_ = port; }
    void VoidPort() { port_ = noPort; }
    int Port() const { return port_; }

    /// 192.168.0.10 is 0xC0A8000A.
    unsigned int GetAsUInt32() const;
    /// This address as a netmask: all bits from its lowest set one upwards, so that holes do not
    /// count (255.0.255.0 is 255.255.255.0); 0 for 0.0.0.0.
    unsigned int GetAsUInt32Mask() const;
    /// The first and the last address of the network that a mask makes around this one, and the
    /// address behind the first or before the last. Without a port.
    IPv4Address GetNetwork(IPv4Address const& mask) const;
    IPv4Address GetBroadcast(IPv4Address const& mask) const;
    IPv4Address GetPreferredGateway(IPv4Address const& mask, bool first) const;
    bool SameAs(IPv4Address const& other, bool withPort) const;

    /// "A.B.C.D", and with withPort "|Port" behind it when there is a port.
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
