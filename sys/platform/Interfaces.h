#pragma once

namespace sys::platform {

/// One address of a network interface of this machine. All pointers are valid during the call that
/// hands it over.
struct InterfaceEntry {
    char const* name;
    unsigned index;
    void const* address;
    int addressLength;
    void const* mask;  ///< null when the address has none
    int maskLength;
};

/// Hands every IPv4 and IPv6 address of the machine's interfaces to each, with context; false when
/// the system does not tell them.
bool listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context);

}  // namespace sys::platform
