#include "core/net/InfoSocketAddr.h"
#include "core/net/Socket.h"

namespace core {

namespace platform = sys::platform;

int Socket::SendTo(void const* data, int length, ClassRef<SocketAddr> const& to) {
    if (!to) {
        return -1;
    }
    return Remember(platform::sendDatagram(handle_, data, length, to->GetBytes(), to->GetSize()));
}

int Socket::SendTo(void const* data, int length, EndPoint const& to) {
    return SendTo(data, length, to.GetSocketAddress());
}

int Socket::SendTo(void const* data, int length, String const& to) {
    return SendTo(data, length, EndPoint(to, domain_, type_));
}

int Socket::SendDatagram(void const* data, int length, EndPoint const& to) {
    return SendTo(data, length, to);
}

int Socket::SendDatagram(void const* data, int length, IPv4Address const& to) {
    return SendTo(data, length, EndPoint(to, type_));
}

int Socket::SendDatagram(void const* data, int length, String const& to) {
    return SendTo(data, length, to);
}

int Socket::Broadcast(void const* data, int length, int port) {
    return SendTo(data, length, EndPoint("255.255.255.255", port, domain_, type_));
}

int Socket::RecvFrom(void* buffer, int length, ClassRef<SocketAddr>& from) {
    unsigned char bytes[platform::addressRoom];
    int size = sizeof bytes;
    int const got = Remember(platform::receiveDatagram(handle_, buffer, length, bytes, size));
    if (got >= 0) {
        from = new SocketAddr(bytes, size);
    }
    return got;
}

int Socket::RecvFrom(void* buffer, int length, ClassRef<EndPoint>& from) {
    ClassRef<SocketAddr> address;
    int const got = RecvFrom(buffer, length, address);
    if (got >= 0) {
        from = new EndPoint(address, type_);
    }
    return got;
}

int Socket::RecvFrom(void* buffer, int length, String& from) {
    ClassRef<SocketAddr> address;
    int const got = RecvFrom(buffer, length, address);
    if (got >= 0) {
        address->GetName(from, true);
    }
    return got;
}

}  // namespace core
