#include "sys/platform/Interfaces.h"

#include <winsock2.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>

#include <cstddef>
#include <string>
#include <vector>

#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// Sets the first bits of the bytes of an address, whose others are 0.
void setLeadingBits(unsigned char* bytes, unsigned count) {
    for (unsigned bit = 0; bit < count; ++bit) {
        bytes[bit / 8] = static_cast<unsigned char>(bytes[bit / 8] | (0x80U >> bit % 8));
    }
}

/// The netmask of an address, of which the system tells the length of the network's part.
sockaddr_storage maskOf(IP_ADAPTER_UNICAST_ADDRESS const& entry) {
    sockaddr_storage mask{};
    mask.ss_family = entry.Address.lpSockaddr->sa_family;
    if (mask.ss_family == AF_INET) {
        auto& bytes = reinterpret_cast<sockaddr_in&>(mask).sin_addr;
        setLeadingBits(reinterpret_cast<unsigned char*>(&bytes),
                       entry.OnLinkPrefixLength <= 32 ? entry.OnLinkPrefixLength : 32);
    } else {
        setLeadingBits(reinterpret_cast<sockaddr_in6&>(mask).sin6_addr.s6_addr,
                       entry.OnLinkPrefixLength <= 128 ? entry.OnLinkPrefixLength : 128);
    }
    return mask;
}

/// The adapters of the machine as the system lays them out; empty when it does not tell them.
std::vector<std::max_align_t> readAdapters() {
    ULONG const flags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
    ULONG size = 16 * 1024;
    std::vector<std::max_align_t> room;
    ULONG result = ERROR_BUFFER_OVERFLOW;
    // The table may grow between two calls; one that grows for ever is not worth waiting for.
    for (int attempt = 0; attempt < 5 && result == ERROR_BUFFER_OVERFLOW; ++attempt) {
        room.resize(size / sizeof(std::max_align_t) + 1);
        result = GetAdaptersAddresses(AF_UNSPEC, flags, nullptr,
                                      reinterpret_cast<IP_ADAPTER_ADDRESSES*>(room.data()), &size);
    }
    if (result != ERROR_SUCCESS) {
        room.clear();
    }
    return room;
}

}  // namespace

bool listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context) {
    auto const room = readAdapters();
    if (room.empty()) {
        return false;
    }
    auto const* adapter = reinterpret_cast<IP_ADAPTER_ADDRESSES const*>(room.data());
    for (; adapter != nullptr; adapter = adapter->Next) {
        std::string const name = narrow(adapter->FriendlyName);
        for (auto const* entry = adapter->FirstUnicastAddress; entry != nullptr;
             entry = entry->Next) {
            int const family = entry->Address.lpSockaddr->sa_family;
            if (family != AF_INET && family != AF_INET6) {
                continue;
            }
            int const length = entry->Address.iSockaddrLength;
            sockaddr_storage const mask = maskOf(*entry);
            each({name.c_str(), family == AF_INET ? adapter->IfIndex : adapter->Ipv6IfIndex,
                  entry->Address.lpSockaddr, length, &mask, length},
                 context);
        }
    }
    return true;
}

}  // namespace sys::platform
