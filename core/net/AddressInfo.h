#pragma once

#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"

namespace core {

class InfoSocketAddr;

/// One entry of a resolver's result chain. The first entry is the root: it owns the whole chain,
/// and every other entry holds a reference to it.
class AddressInfo : public BasicClass {
public:
    /// The root of a chain, which it takes over.
    explicit AddressInfo(sys::platform::ResolvedEntry* chain);
    AddressInfo(AddressInfo const&) = delete;
    AddressInfo& operator=(AddressInfo const&) = delete;
    ~AddressInfo() override;

    char const* ClassName() const override;

    ClassRef<AddressInfo> GetRoot();
    /// The entry behind this one; empty at the end of the chain.
    ClassRef<AddressInfo> Next();
    ClassRef<InfoSocketAddr> GetSocketAddress();

    /// The entry of the wanted domain, from this one on, that fits type best: protocol and type
    /// the same, else only the protocol, else any. The earlier of equals; empty when there is none.
    ClassRef<AddressInfo> FindBest(SocketDomain domain, SocketType type);

private:
    friend class InfoSocketAddr;
    AddressInfo(ClassRef<AddressInfo> const& root, sys::platform::ResolvedEntry* entry);

    ClassRef<AddressInfo> root_;  ///< empty for the root itself
    sys::platform::ResolvedEntry* entry_;
};

}  // namespace core
