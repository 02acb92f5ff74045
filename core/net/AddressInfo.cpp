#include "core/net/AddressInfo.h"

#include "core/net/InfoSocketAddr.h"

namespace core {

namespace platform = sys::platform;

namespace {

/// Returns how well an entry matches the type, from 1 to 3.
int rankOf(platform::ResolvedEntry const* entry, SocketType type) {
    if (platform::resolvedProtocolNumber(entry) != platform::protocolNumber(type)) {
        return 1;
    }
    return platform::resolvedTypeNumber(entry) != platform::typeNumber(type) ? 2 : 3;
}

SocketAddr addressOf(platform::ResolvedEntry const* entry) {
    int length = 0;
    void const* const bytes = platform::resolvedAddress(entry, length);
    return {bytes, length};
}

}  // namespace

AddressInfo::AddressInfo(platform::ResolvedEntry* chain) : entry_(chain) {}

AddressInfo::AddressInfo(ClassRef<AddressInfo> const& root, platform::ResolvedEntry* entry)
    : root_(root), entry_(entry) {}

AddressInfo::~AddressInfo() {
    if (!root_) {
        platform::freeResolved(entry_);
    }
}

char const* AddressInfo::ClassName() const {
    return "AddressInfo";
}

ClassRef<AddressInfo> AddressInfo::GetRoot() {
    return root_ ? root_ : ClassRef<AddressInfo>(this);
}

ClassRef<AddressInfo> AddressInfo::Next() {
    platform::ResolvedEntry* const next = platform::nextResolved(entry_);
    return next != nullptr ? new AddressInfo(GetRoot(), next) : nullptr;
}

ClassRef<InfoSocketAddr> AddressInfo::GetSocketAddress() {
    return new InfoSocketAddr(ClassRef<AddressInfo>(this));
}

ClassRef<AddressInfo> AddressInfo::FindBest(SocketDomain domain, SocketType type) {
    platform::ResolvedEntry* best = nullptr;
    int bestRank = 0;
    for (auto* entry = entry_; entry != nullptr; entry = platform::nextResolved(entry)) {
        bool const inDomain =
            platform::resolvedFamilyNumber(entry) == platform::domainNumber(domain);
        int const rank = inDomain ? rankOf(entry, type) : 0;
        if (rank > bestRank) {
            best = entry;
            bestRank = rank;
        }
    }
    return best != nullptr ? new AddressInfo(GetRoot(), best) : nullptr;
}

InfoSocketAddr::InfoSocketAddr(ClassRef<AddressInfo> const& info)
    : SocketAddr(addressOf(info->entry_)), info_(info) {}

char const* InfoSocketAddr::ClassName() const {
    return "InfoSocketAddr";
}

}  // namespace core
