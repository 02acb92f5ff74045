#include "sys/platform/Interfaces.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace sys::platform {

namespace {

int lengthOf(sockaddr const* address) {
    if (address == nullptr) {
        return 0;
    }
    return address->sa_family == AF_INET ? static_cast<int>(sizeof(sockaddr_in))
                                         : static_cast<int>(sizeof(sockaddr_in6));
}

}  // namespace

bool listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context) {
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0) {
        return false;
    }
    for (ifaddrs const* entry = all; entry != nullptr; entry = entry->ifa_next) {
        sockaddr const* const address = entry->ifa_addr;
        if (address == nullptr ||
            (address->sa_family != AF_INET && address->sa_family != AF_INET6)) {
            continue;
        }
        // The system may leave the family of a mask unset: it is that of its address.
        each({entry->ifa_name, if_nametoindex(entry->ifa_name), address, lengthOf(address),
              entry->ifa_netmask, entry->ifa_netmask != nullptr ? lengthOf(address) : 0},
             context);
    }
    freeifaddrs(all);
    return true;
}

}  // namespace sys::platform
