#include "core/net/Socket.h"

#include <cerrno>

namespace core {

namespace platform = sys::platform;

bool Socket::init() {
    return platform::startSockets() == 0;
}

int Socket::done() {
    platform::stopSockets();
    return 0;
}

Socket::Socket(SocketDomain domain, SocketType type) {
    if (CreateTheSocket(domain, type) == socket_result::success) {
        domain_ = domain;
        type_ = type;
    }
}

// Delegate, so that the destructor closes the handle if the body throws std::bad_alloc.
Socket::Socket(platform::SocketHandle handle, ClassRef<SocketAddr> const& peer, SocketType type)
    : Socket() {
    handle_ = handle;
    type_ = type;
    if (peer) {
        SetPeer(*peer);
    }
}

Socket::Socket(platform::SocketHandle handle, EndPoint const& peer)
    : Socket(handle, peer.GetSocketAddress(), peer.GetType()) {}

Socket::~Socket() {
    CloseTheSocket(false);
}

char const* Socket::ClassName() const {
    return "Socket";
}

SocketResult Socket::CreateTheSocket(SocketDomain domain, SocketType type) {
    if (IsOpen()) {
        return socket_result::wrongState;
    }
    platform::SocketHandle const opened = platform::openSocket(domain, type);
    if (opened < 0) {
        return Fail(opened);
    }
    handle_ = opened;
    return socket_result::success;
}

SocketResult Socket::Close() {
    return CloseTheSocket(false) ? socket_result::success : socket_result::wrongState;
}

bool Socket::CloseTheSocket(bool both) {
    if (!IsOpen()) {
        return false;
    }
    if (both) {
        platform::shutdownBoth(handle_);
    } else {
        platform::shutdownSending(handle_);
    }
    platform::closeSocket(handle_);
    handle_ = platform::noSocket;
    return true;
}

bool Socket::ShutdownSend() {
    return IsOpen() && platform::shutdownSending(handle_) == 0;
}

bool Socket::Abort() {
    if (!IsOpen()) {
        return false;
    }
    platform::resetSocket(handle_);
    handle_ = platform::noSocket;
    return true;
}

int Socket::checkRecv(int ms) const {
    return IsOpen() ? SetErrno(platform::waitReadable(handle_, ms)) : 0;
}

int Socket::checkSend(int ms) const {
    return SetErrno(platform::waitWritable(handle_, ms));
}

bool Socket::CanRecv(int ms) const {
    return checkRecv(ms) > 0;
}

bool Socket::CanSend(int ms) const {
    return checkSend(ms) > 0;
}

Socket::Readiness Socket::CheckRecv(int ms) const {
    return fromSelectResult(checkRecv(ms));
}

Socket::Readiness Socket::CheckSend(int ms) const {
    return fromSelectResult(checkSend(ms));
}

Socket::Readiness Socket::fromSelectResult(int result) {
    if (result >= 0) {
        return result > 0 ? Readiness::ready : Readiness::timedOut;
    }
    switch (errno) {
        case EBADF:
            return Readiness::badHandle;
        case EINTR:
            return Readiness::interrupted;
        case EINVAL:
            return Readiness::invalid;
        case ENOMEM:
            return Readiness::noMemory;
        default:
            return Readiness::failed;
    }
}

bool Socket::setBlocking(bool blocking) {
    if (platform::setNonBlocking(handle_, !blocking) != 0) {
        return false;
    }
    blocking_ = blocking;
    return true;
}

int Socket::SetErrno(int result) {
    if (result >= 0) {
        return result;
    }
    errno = -result;
    return -1;
}

int Socket::Remember(int result) {
    lastError_ = result < 0 ? -result : 0;
    return SetErrno(result);
}

SocketResult Socket::Fail(int result) {
    Remember(result);
    return SocketResultFrom_errno(lastError_, true);
}

void Socket::SetPeer(SocketAddr const& peer) {
    domain_ = peer.GetDomain();
    peer.GetName(target_, true);
}

}  // namespace core
