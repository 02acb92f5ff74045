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

/// Stores the address that call reads; on failure address is unchanged.
SocketResult readAddress(AddressCall call, platform::SocketHandle handle,
                         ClassRef<SocketAddr>& address) {
    unsigned char bytes[platform::maxAddressLength];
    int length = sizeof bytes;
    int const result = call(handle, bytes, length);
    if (result != 0) {
        return SocketResultFrom_errno(-result, true);
    }
    address = new SocketAddr(bytes, length);
    return socket_result::success;
}

SocketResult readName(AddressCall call, platform::SocketHandle handle, String& name, bool numeric) {
    ClassRef<SocketAddr> address;
    SocketResult const result = readAddress(call, handle, address);
    return result == socket_result::success ? address->GetName(name, numeric) : result;
}

SocketResult readEndPoint(AddressCall call, platform::SocketHandle handle, SocketType type,
                          EndPoint& endPoint) {
    ClassRef<SocketAddr> address;
    SocketResult const result = readAddress(call, handle, address);
    if (result == socket_result::success) {
        endPoint = EndPoint(address, type);
    }
    return result;
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

SocketResult Socket::Connect(EndPoint const& endPoint, int ms) {
    ClassRef<SocketAddr> const& address = endPoint.GetSocketAddress();
    if (!address || !setBlocking(false)) {
        return socket_result::failed;
    }
    int const result =
        platform::connectSocket(handle_, address->GetBytes(), address->GetSize(), ms);
    return result == 0 ? address->GetName(target_, true) : Fail(result);
}

SocketResult Socket::ConnectOpen(SocketAddr const& address) {
    int const result = platform::connectSocket(handle_, address.GetBytes(), address.GetSize());
    return result == 0 ? address.GetName(target_, true) : Fail(result);
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
    int const result = platform::bindSocket(handle_, address->GetBytes(), address->GetSize());
    return result == 0 ? socket_result::success : Fail(result);
}

SocketResult Socket::Listen() {
    int const result = platform::listenSocket(handle_, largestBacklog);
    return result == 0 ? socket_result::success : Fail(result);
}

SocketResult Socket::Accept(ClassRef<Socket>& accepted) {
    unsigned char bytes[platform::maxAddressLength];
    int length = sizeof bytes;
    // Allocate first, so that the accepted handle always has an owner.
    ClassRef<Socket> const next(new Socket);
    platform::SocketHandle const connection = platform::acceptSocket(handle_, bytes, length);
    if (connection < 0) {
        return Fail(connection);
    }
    next->handle_ = connection;
    next->type_ = type_;
    next->SetPeer(SocketAddr(bytes, length));
    accepted = next;
    return socket_result::success;
}

SocketResult Socket::GetSockName(String& name, bool numeric) const {
    return readName(&platform::localAddress, handle_, name, numeric);
}

SocketResult Socket::GetPeerName(String& name, bool numeric) const {
    return readName(&platform::peerAddress, handle_, name, numeric);
}

SocketResult Socket::GetSockName(EndPoint& endPoint) const {
    return readEndPoint(&platform::localAddress, handle_, type_, endPoint);
}

SocketResult Socket::GetPeerName(EndPoint& endPoint) const {
    return readEndPoint(&platform::peerAddress, handle_, type_, endPoint);
}

}  // namespace core
