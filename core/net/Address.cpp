#include "core/net/Address.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "core/text/cStrings.h"

namespace core {

SocketResult Address::DecomposeAddress(String const& text, String& host, String& service) {
    int const bar = text.Find('|', 0);
    if (bar < 1) {
        return socket_result::invalid;
    }
    // Copy both parts before storing one: host or service may be the same object as text.
    String left = text.Left(bar);
    service = text.Copy(bar + 1, -1);
    host = std::move(left);
    return socket_result::success;
}

String Address::ComposeAddress(String const& host, String const& service) {
    return host.AppendNew('|').AppendNew(service);
}

void Address::ComposeAddress(String const& host, String const& service, String& out) {
    out = ComposeAddress(host, service);
}

int Address::PortOf(String const& service) {
    long long const port = strToInt64Def(service.getCString(), noPort);
    if (port < noPort) {
        return noPort + 1;
    }
    return static_cast<int>(std::min<long long>(port, std::numeric_limits<int>::max()));
}

ClassRef<AddressInfo> Address::GetInfo(String const& text, SocketDomain domain, SocketType type,
                                       bool) {
    String host(text);
    String service;
    DecomposeAddress(text, host, service);
    char const* const serviceText = service.GetLength() > 0 ? service.getCString() : nullptr;
    sys::platform::ResolvedEntry* chain = nullptr;
    if (sys::platform::resolve(host.getCString(), serviceText, domain, type, chain) != 0) {
        return {};
    }
    return new AddressInfo(chain);
}

ClassRef<AddressInfo> Address::GetInfo(String const& text, bool flag) {
    return GetInfo(text, SocketDomain::unspecified, SocketType::stream, flag);
}

ClassRef<AddressInfo> Address::GetInfo(String const& text, SocketType type, bool flag) {
    ClassRef<AddressInfo> const found = GetInfo(text, SocketDomain::IPv4, type, flag);
    return found ? found : GetInfo(text, SocketDomain::IPv6, type, flag);
}

}  // namespace core
