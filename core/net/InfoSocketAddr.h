#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/SocketAddr.h"

namespace core {

/// The address of a resolver's entry. It keeps the resolver's chain alive as long as it lives.
class InfoSocketAddr : public SocketAddr {
public:
    explicit InfoSocketAddr(ClassRef<AddressInfo> const& info);

    char const* ClassName() const override;

private:
    ClassRef<AddressInfo> info_;
};

}  // namespace core
