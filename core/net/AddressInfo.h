#pragma once

#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"

namespace core {

class InfoSocketAddr;

/// An entry of a resolver's result chain. The first entry, the root, owns the whole chain; every
/// other entry keeps a reference to the root.
class AddressInfo : public BasicClass {
public:
    /// Creates the root, which takes ownership of the chain.
    explicit AddressInfo(sys::platform::ResolvedEntry* chain);
    AddressInfo(AddressInfo const&) = delete;
    AddressInfo& operator=(AddressInfo const&) = delete;
    ~AddressInfo() override;

    char const* ClassName() const override;

    ClassRef<AddressInfo> GetRoot();
    /// Returns the next entry; an empty reference at the end of the chain.
    ClassRef<AddressInfo> Next();
    ClassRef<InfoSocketAddr> GetSocketAddress();

    /// Returns the entry of the domain, from this one on, that matches type best: protocol and
    /// type, else protocol, else neither; of equal matches the first. An empty reference if the
    /// domain has no entry.
    ClassRef<AddressInfo> FindBest(SocketDomain domain, SocketType type);

private:
    friend class InfoSocketAddr;
    AddressInfo(ClassRef<AddressInfo> const& root, sys::platform::ResolvedEntry* entry);

    ClassRef<AddressInfo> root_;  ///< empty for the root itself
    sys::platform::ResolvedEntry* entry_;
};

}  // namespace core
