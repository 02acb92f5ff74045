#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/IPv4Address.h"
#include "core/net/IPv6Address.h"
#include "core/net/SocketAddr.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// A resolved address with its domain, type and text. If resolving fails, there is no address, and
/// domain and type are those requested. Not thread-safe.
class EndPoint : public BasicClass {
public:
    EndPoint() = default;
    /// Resolves host "|" service.
    EndPoint(String const& text, SocketDomain domain, SocketType type);
    EndPoint(String const& host, int port, SocketDomain domain, SocketType type);
    EndPoint(String const& host, String const& service, SocketDomain domain, SocketType type);
    /// Uses the entry of info's chain, from info on and in its domain, that matches type best.
    EndPoint(ClassRef<AddressInfo> const& info, SocketType type);
    EndPoint(ClassRef<SocketAddr> const& address, SocketType type);
    EndPoint(IPv4Address const& address, SocketType type);
    EndPoint(IPv6Address const& address, SocketType type);

    char const* ClassName() const override;

    /// Returns host "|" service as given or, if constructed from an address, numeric.
    String const& GetComposedAddress() const { return text_; }
    String GetAddress() const;
    String GetService() const;
    /// Returns the port of the resolved address; without an address, the service as by
    /// Address::PortOf.
    int GetPort() const;
    SocketDomain GetDomain() const { return domain_; }
    SocketType GetType() const { return type_; }
    /// Returns the resolved address; an empty reference if there is none.
    ClassRef<SocketAddr> const& GetSocketAddress() const { return address_; }

    /// Whether type and resolved address are equal; without addresses, type and text.
    bool SameAs(EndPoint const& other) const;
    /// Removes the resolved address; keeps text, domain and type.
    void ResetAddress();
    /// Resets all fields to their initial values.
    void VoidFields();

private:
    void SetAddress(ClassRef<SocketAddr> const& address);

    ClassRef<SocketAddr> address_;
    SocketDomain domain_ = SocketDomain::unspecified;
    SocketType type_ = SocketType::unspecified;
    String text_;
};

}  // namespace core
