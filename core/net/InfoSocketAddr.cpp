#include "core/net/InfoSocketAddr.h"

namespace core {

namespace {

SocketAddr addressOf(sys::platform::ResolvedEntry const* entry) {
    int length = 0;
    void const* const bytes = sys::platform::resolvedAddress(entry, length);
    return {bytes, length};
}

}  // namespace

InfoSocketAddr::InfoSocketAddr(ClassRef<AddressInfo> const& info)
    : SocketAddr(addressOf(info->entry_)), info_(info) {}

char const* InfoSocketAddr::ClassName() const {
    return "InfoSocketAddr";
}

}  // namespace core
