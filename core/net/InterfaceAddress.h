#pragma once

#include <vector>

#include "core/net/IPv4Address.h"
#include "core/net/IPv6Address.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/text/String.h"

namespace core {

/// An address of a network interface of this machine, as text.
class InterfaceAddress : public BasicClass {
public:
    class List;

    InterfaceAddress(String const& name, SocketDomain domain, String const& address,
                     String const& mask);

    char const* ClassName() const override;

    String const& GetName() const { return name_; }
    SocketDomain GetDomain() const { return domain_; }
    String const& GetAddress() const { return address_; }
    /// Returns the netmask; empty if the address has none.
    String const& GetMask() const { return mask_; }

    /// Whether this is the address, ignoring ports.
    bool SameAddress(IPv4Address const& address) const;
    bool SameAddress(IPv6Address const& address) const;
    /// Whether both texts are the same IPv4 address, ignoring ports.
    bool SameAddress(String const& address) const;

    /// Replaces the list by the machine's addresses of one domain, or of all; returns false if the
    /// operating system cannot list them.
    static bool GetInterfacesList(List& list, SocketDomain domain);
    static bool GetInterfacesList(List& list);

private:
    String name_;
    SocketDomain domain_;
    String address_;
    String mask_;
};

/// The addresses of a machine, in the order of the operating system.
class InterfaceAddress::List : public BasicClass {
public:
    char const* ClassName() const override;

    int Count() const { return static_cast<int>(entries_.size()); }
    /// Returns the entry at index, which must be valid.
    InterfaceAddress const& operator[](int index) const;
    void Add(InterfaceAddress const& entry) { entries_.push_back(entry); }
    void Clear() { entries_.clear(); }

    /// Return the index of the first match from start on, or -1; a negative start counts as 0.
    int FindAddress(IPv4Address const& address, int start = 0) const;
    int FindAddress(IPv6Address const& address, int start = 0) const;
    int FindAddress(String const& address, int start = 0) const;
    int FindName(String const& name, int start = 0) const;

private:
    template <class Matches>
    int Find(int start, Matches matches) const;

    std::vector<InterfaceAddress> entries_;
};

}  // namespace core
