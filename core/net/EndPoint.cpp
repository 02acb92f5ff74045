#include "core/net/EndPoint.h"

#include "core/net/Address.h"
#include "core/net/InfoSocketAddr.h"

namespace core {

EndPoint::EndPoint(String const& text, SocketDomain domain, SocketType type)
    : domain_(domain), type_(type), text_(text) {
    if (ClassRef<AddressInfo> const info = Address::GetInfo(text, domain, type, false)) {
        SetAddress(ClassRef<SocketAddr>(info->GetSocketAddress().Get()));
    }
}

EndPoint::EndPoint(String const& host, int port, SocketDomain domain, SocketType type)
    : EndPoint(host, String::format("%1").argi(1, port), domain, type) {}

EndPoint::EndPoint(String const& host, String const& service, SocketDomain domain, SocketType type)
    : EndPoint(Address::ComposeAddress(host, service), domain, type) {}

EndPoint::EndPoint(ClassRef<AddressInfo> const& info, SocketType type) : type_(type) {
    if (!info) {
        return;
    }
    SocketDomain const domain = info->GetSocketAddress()->GetDomain();
    ClassRef<AddressInfo> const best = info->FindBest(domain, type);
    SetAddress(ClassRef<SocketAddr>((best ? best : info)->GetSocketAddress().Get()));
    address_->GetName(text_, true);
}

EndPoint::EndPoint(ClassRef<SocketAddr> const& address, SocketType type) : type_(type) {
    if (address) {
        SetAddress(address);
        address->GetName(text_, true);
    }
}

EndPoint::EndPoint(IPv4Address const& address, SocketType type)
    : EndPoint(address.GetAsString(true), SocketDomain::IPv4, type) {}

EndPoint::EndPoint(IPv6Address const& address, SocketType type)
    : EndPoint(address.GetAsString(true), SocketDomain::IPv6, type) {}

char const* EndPoint::ClassName() const {
    return "EndPoint";
}

void EndPoint::SetAddress(ClassRef<SocketAddr> const& address) {
    address_ = address;
    domain_ = address->GetDomain();
}

String EndPoint::GetAddress() const {
    return text_.Find('|') > 0 ? text_.LeftOf('|') : text_;
}

String EndPoint::GetService() const {
    return text_.Find('|') > 0 ? text_.RightOf('|') : String();
}

int EndPoint::GetPort() const {
    String host;
    String service = GetService();
    if (address_) {
        address_->GetName(host, service, true);
    }
    return Address::PortOf(service);
}

bool EndPoint::SameAs(EndPoint const& other) const {
    if (type_ != other.type_ || !address_ || !other.address_) {
        return type_ == other.type_ && !address_ && !other.address_ && text_ == other.text_;
    }
    return address_->IsTheSameOf(*other.address_);
}

void EndPoint::ResetAddress() {
    address_.Set(nullptr);
}

void EndPoint::VoidFields() {
    *this = EndPoint();
}

}  // namespace core
