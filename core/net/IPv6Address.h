#pragma once

#include "core/net/SocketTypes.h"
#include "core/text/String.h"

namespace core {

/// An IPv6 address with an optional port; a plain value. Group 0 is the leftmost in the text.
class IPv6Address {
public:
    static constexpr int groupCount = 8;

    /// All groups 0, without a port.
    IPv6Address() = default;
    IPv6Address(IPv6Address const& other) = default;
    /// Parses text with Set.
    explicit IPv6Address(String const& text) { Set(text); }
    IPv6Address& operator=(IPv6Address const& other) = default;

    /// Copies eight groups, in host byte order; keeps the port.
    void Set(unsigned short const* groups);
    /// Parses eight groups of up to four hexadecimal digits separated by ":", with "::" for one run
    /// of zero groups and optionally an IPv4 address as the last two groups; after "|" a port as in
    /// IPv4Address::Set. Allows spaces around host and port, but no zone ("%eth0"), which is
    /// meaningless on other machines. On failure returns false, sets all groups to 0 and keeps the
    /// port.
    bool Set(String const& text);
    /// Whether Set accepts the text.
    static bool IsValid(String const& text);

    bool IsNull() const;
    /// Returns the group at index, which must be from 0 to 7.
    unsigned short& operator[](int index) { return groups_[index]; }
    unsigned short operator[](int index) const { return groups_[index]; }
    void VoidAddress();

    /// Stores any value, unchecked.
    void SetPortA(int port) { port_ = port; }
    void VoidPort() { port_ = noPort; }
    int Port() const { return port_; }

    bool SameAs(IPv6Address const& other, bool withPort) const;

    /// Returns the canonical text (RFC 5952): lower case, no leading zeros, the first longest run
    /// of at least two zero groups as "::", an IPv4-mapped address in dotted form. With withPort
    /// and a port, "|Port" follows.
    String GetAsString(bool withPort) const;

private:
    unsigned short groups_[groupCount] = {};
    int port_ = noPort;
};

}  // namespace core
