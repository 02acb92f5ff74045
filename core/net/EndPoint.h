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

/// An address together with the domain and type that it was resolved for, and the text it was made
/// from. What cannot be resolved has no address, and the domain and type that were asked for.
class EndPoint : public BasicClass {
public:
    EndPoint() = default;
    /// From host "|" service, resolved.
    EndPoint(String const& text, SocketDomain domain, SocketType type);
    EndPoint(String const& host, int port, SocketDomain domain, SocketType type);
    EndPoint(String const& host, String const& service, SocketDomain domain, SocketType type);
    /// From the entry of the chain, from this one on, that fits type best; of any domain.
    EndPoint(ClassRef<AddressInfo> const& info, SocketType type);
    EndPoint(ClassRef<SocketAddr> const& address, SocketType type);
    EndPoint(IPv4Address const& address, SocketType type);
    EndPoint(IPv6Address const& address, SocketType type);

    char const* ClassName() const override;

    /// host "|" service, as it was given or, where it was made from an address, in numbers.
    String const& GetComposedAddress() const { return text_; }
    String GetAddress() const;
    String GetService() const;
    /// The port of the resolved address; without one the service as a number, noPort when it is
    /// none.
    int GetPort() const;
    SocketDomain GetDomain() const { return domain_; }
    SocketType GetType() const { return type_; }
    /// Empty when nothing was found.
    ClassRef<SocketAddr> const& GetSocketAddress() const { return address_; }

    /// Whether both have the same type and the same resolved address.
    bool SameAs(EndPoint const& other) const;
    /// Drops the resolved address; the text, the domain and the type stay.
    void ResetAddress();
    /// All fields back to empty.
    void VoidFields();

private:
    void Take(ClassRef<SocketAddr> const& address);

    ClassRef<SocketAddr> address_;
    SocketDomain domain_ = SocketDomain::unspecified;
    SocketType type_ = SocketType::unspecified;
    String text_;
};

}  // namespace core
