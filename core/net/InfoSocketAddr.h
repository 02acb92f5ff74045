#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/SocketAddr.h"

namespace core {

/// The address of a resolver's entry. Keeps a reference to the entry's chain.
class InfoSocketAddr : public SocketAddr {
public:
    explicit InfoSocketAddr(ClassRef<AddressInfo> const& info);

    char const* ClassName() const override;

private:
    ClassRef<AddressInfo> info_;
};

}  // namespace core
