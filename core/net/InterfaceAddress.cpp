#include "core/net/InterfaceAddress.h"

#include <algorithm>

#include "core/net/SocketAddr.h"
#include "sys/platform/Sockets.h"

namespace core {

namespace {

String hostOf(void const* address, int length) {
    String host;
    String service;
    if (address != nullptr) {
        SocketAddr(address, length).GetName(host, service, true);
    }
    return host;
}

struct Selection {
    InterfaceAddress::List& list;
    SocketDomain domain;
};

void addEntry(sys::platform::InterfaceEntry const& entry, void* context) {
    Selection const& wanted = *static_cast<Selection*>(context);
    SocketDomain const domain = sys::platform::domainOf(entry.address, entry.addressLength);
    if (wanted.domain == SocketDomain::unspecified || wanted.domain == domain) {
        wanted.list.Add({entry.name, domain, hostOf(entry.address, entry.addressLength),
                         hostOf(entry.mask, entry.maskLength)});
    }
}

/// Returns the address without the zone that follows link-local addresses.
String withoutZone(String const& address) {
    int const percent = address.Find('%');
    return percent < 0 ? address : address.Left(percent);
}

}  // namespace

InterfaceAddress::InterfaceAddress(String const& name, SocketDomain domain, String const& address,
                                   String const& mask)
    : name_(name), domain_(domain), address_(address), mask_(mask) {}

char const* InterfaceAddress::ClassName() const {
    return "InterfaceAddress";
}

bool InterfaceAddress::SameAddress(IPv4Address const& address) const {
    IPv4Address own;
    return own.Set(address_) && own.SameAs(address, false);
}

bool InterfaceAddress::SameAddress(IPv6Address const& address) const {
    IPv6Address own;
    return own.Set(withoutZone(address_)) && own.SameAs(address, false);
}

bool InterfaceAddress::SameAddress(String const& address) const {
    IPv4Address other;
    return other.Set(address) && SameAddress(other);
}

bool InterfaceAddress::GetInterfacesList(List& list, SocketDomain domain) {
    list.Clear();
    Selection wanted{list, domain};
    return sys::platform::listInterfaces(&addEntry, &wanted) == 0;
}

bool InterfaceAddress::GetInterfacesList(List& list) {
    return GetInterfacesList(list, SocketDomain::unspecified);
}

char const* InterfaceAddress::List::ClassName() const {
    return "List";
}

InterfaceAddress const& InterfaceAddress::List::operator[](int index) const {
    return entries_[static_cast<std::size_t>(index)];
}

template <class Matches>
int InterfaceAddress::List::Find(int start, Matches matches) const {
    for (int i = std::max(start, 0); i < Count(); ++i) {
        if (matches((*this)[i])) {
            return i;
        }
    }
    return -1;
}

int InterfaceAddress::List::FindAddress(IPv4Address const& address, int start) const {
    return Find(start, [&](auto const& entry) { return entry.SameAddress(address); });
}

int InterfaceAddress::List::FindAddress(IPv6Address const& address, int start) const {
    return Find(start, [&](auto const& entry) { return entry.SameAddress(address); });
}

int InterfaceAddress::List::FindAddress(String const& address, int start) const {
    return Find(start, [&](auto const& entry) { return entry.SameAddress(address); });
}

int InterfaceAddress::List::FindName(String const& name, int start) const {
    return Find(start, [&](auto const& entry) { return entry.GetName() == name; });
}

}  // namespace core
