#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/noPort.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// An IPv6 address with an optional port; a plain value. Group 0 is the leftmost of the text.
class IPv6Address {
public:
    static constexpr int groupCount = 8;

    /// All groups 0, without a port.
    IPv6Address() = default;
    IPv6Address(IPv6Address const& other) = default;
    IPv6Address(IPv6Address const& other, int port) : IPv6Address(other) { port_ = port; }
    /// Copies eight groups, in host order.
    explicit IPv6Address(unsigned short const* groups, int port = noPort);
    /// Parses text with Set.
    explicit IPv6Address(String const& text) { Set(text); }
    IPv6Address& operator=(IPv6Address const& other) = default;

    /// Copies eight groups, in host order; the port stays.
    void Set(unsigned short const* groups);
    /// Parses eight groups of up to four hexadecimal digits with ":" between, one "::" for a run of
    /// zero groups, and an IPv4 address in the place of the last two; behind "|" a port, as
    /// IPv4Address takes it. Blanks around host and port are allowed, a zone ("%eth0") is not: it
    /// means nothing on another machine. False, with all groups 0 and the port as it was, when the
    /// text is none.
    bool Set(String const& text);
    /// Whether Set takes the text.
    static bool IsValid(String const& text);

    bool IsNull() const;
    /// The group at an index from 0 to 7, unchecked.
    unsigned short& operator[](int index) { return groups_[index]; }
    unsigned short operator[](int index) const { return groups_[index]; }
    void VoidAddress();

    /// Any 32-bit value is stored as it is.
    void SetPortA(int port) { port_ = port; }
    void VoidPort() { port_ = noPort; }
    int Port() const { return port_; }

    bool SameAs(IPv6Address const& other, bool withPort) const;

    /// The one canonical text: small letters, no leading zeros, the longest run of zero groups (the
    /// first of equals, two at least) as "::", an IPv4 address that is mapped with its points. With
    /// withPort "|Port" behind it when there is a port.
    String GetAsString(bool withPort) const;

    /// Resolves GetAsString(true); see Address::GetInfo.
    ClassRef<AddressInfo> GetAddressInfo(bool flag) const;
    ClassRef<AddressInfo> GetAddressInfo(SocketDomain domain, SocketType type, bool flag) const;

private:
    unsigned short groups_[groupCount] = {};
    int port_ = noPort;
};

}  // namespace core
