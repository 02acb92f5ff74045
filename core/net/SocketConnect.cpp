#include <limits>

#include "core/net/Address.h"
#include "core/net/InfoSocketAddr.h"
#include "core/net/Socket.h"

namespace core {

namespace platform = sys::platform;

namespace {

int const largestBacklog = std::numeric_limits<int>::max();

using AddressCall = int (*)(platform::SocketHandle, void*, int&);

/// Tries the addresses of the chain in order until one succeeds; returns the last result.
template <class Attempt>
SocketResult firstSuccess(ClassRef<AddressInfo> const& info, Attempt attempt) {
    SocketResult result = socket_result::failed;
    for (ClassRef<AddressInfo> entry = info; entry; entry = entry->Next()) {
        result = attempt(ClassRef<SocketAddr>(entry->GetSocketAddress().Get()));
        if (result == socket_result::success) {
            break;
        }
    }
    return result;
}

ClassRef<SocketAddr> readAddress(AddressCall call, platform::SocketHandle handle) {
    unsigned char bytes[platform::addressRoom];
    int length = sizeof bytes;
    return call(handle, bytes, length) == 0 ? new SocketAddr(bytes, length) : nullptr;
}

SocketResult nameFailure() {
    return SocketResultFrom_errno(platform::lastSocketError(), true);
}

}  // namespace

SocketResult Socket::Connect(String const& text) {
    ClassRef<AddressInfo> const info = Address::GetInfo(text, domain_, type_, false);
    return info ? Connect(info) : socket_result::noAddress;
}

SocketResult Socket::Connect(ClassRef<AddressInfo> const& info) {
    return firstSuccess(info,
                        [this](ClassRef<SocketAddr> const& address) { return Connect(address); });
}

SocketResult Socket::Connect(ClassRef<SocketAddr> const& address) {
    if (!address) {
        return socket_result::failed;
    }
    if (!IsOpen()) {
        SocketResult const created = CreateTheSocket(domain_, type_);
        if (created != socket_result::success) {
            return created;
        }
    }
    return ConnectOpen(*address);
}

SocketResult Socket::Connect(EndPoint const& endPoint) {
    return Connect(endPoint.GetSocketAddress());
}

SocketResult Socket::ConnectOpen(SocketAddr const& address) {
    if (platform::connectSocket(handle_, address.GetBytes(), address.GetSize()) != 0) {
        return Fail();
    }
    return address.GetName(target_, true);
}

bool Socket::Connect() {
    if (IsOpen()) {
        return true;
    }
    return target_.GetLength() > 0 && Connect(String(target_)) == socket_result::success;
}

bool Socket::IsConnected() const {
    return IsOpen() && checkRecv(0) >= 0;
}

bool Socket::GetTarget(String& target) const {
    target = target_;
    return IsOpen();
}

void Socket::SetTarget(String const& target) {
    target_ = target;
}

SocketResult Socket::Bind(String const& text) {
    ClassRef<AddressInfo> const info = Address::GetInfo(text, domain_, type_, false);
    return info ? Bind(info) : socket_result::noAddress;
}

SocketResult Socket::Bind(EndPoint const& endPoint) {
    return Bind(endPoint.GetSocketAddress());
}

bool Socket::IsBound() const {
    EndPoint local;
    return GetSockName(local) == socket_result::success && local.GetPort() > 0;
}

SocketResult Socket::Bind(ClassRef<AddressInfo> const& info) {
    return firstSuccess(info,
                        [this](ClassRef<SocketAddr> const& address) { return Bind(address); });
}

SocketResult Socket::Bind(ClassRef<SocketAddr> const& address) {
    if (!address) {
        return socket_result::failed;
    }
    bool const bound = platform::bindSocket(handle_, address->GetBytes(), address->GetSize()) == 0;
    return bound ? socket_result::success : Fail();
}

SocketResult Socket::Listen() {
    return platform::listenSocket(handle_, largestBacklog) == 0 ? socket_result::success : Fail();
}

SocketResult Socket::Accept(ClassRef<Socket>& accepted) {
    unsigned char bytes[platform::addressRoom];
    int length = sizeof bytes;
    // Allocate first, so that the accepted handle always has an owner.
    ClassRef<Socket> const next(new Socket);
    next->handle_ = platform::acceptSocket(handle_, bytes, length);
    if (next->handle_ == platform::noSocket) {
        return Fail();
    }
    next->type_ = type_;
    next->SetPeer(SocketAddr(bytes, length));
    accepted = next;
    return socket_result::success;
}

SocketResult Socket::GetSockName(String& name, bool numeric) const {
    ClassRef<SocketAddr> const address = readAddress(&platform::localAddress, handle_);
    return address ? address->GetName(name, numeric) : nameFailure();
}

SocketResult Socket::GetPeerName(String& name, bool numeric) const {
    ClassRef<SocketAddr> const address = readAddress(&platform::peerAddress, handle_);
    return address ? address->GetName(name, numeric) : nameFailure();
}

SocketResult Socket::GetSockName(EndPoint& endPoint) const {
    return ReadEndPoint(readAddress(&platform::localAddress, handle_), endPoint);
}

SocketResult Socket::GetPeerName(EndPoint& endPoint) const {
    return ReadEndPoint(readAddress(&platform::peerAddress, handle_), endPoint);
}

SocketResult Socket::ReadEndPoint(ClassRef<SocketAddr> const& address, EndPoint& endPoint) const {
    if (!address) {
        return nameFailure();
    }
    endPoint = EndPoint(address, type_);
    return socket_result::success;
}

}  // namespace core
