#include "core/net/Socket.h"

namespace core {

namespace platform = sys::platform;

using platform::SocketOption;
using platform::SocketTimeout;

bool Socket::SetOption(SocketOption option, int value) {
    return platform::setSocketOption(handle_, option, value) == 0;
}

int Socket::GetOption(SocketOption option) const {
    int value = 0;
    return platform::getSocketOption(handle_, option, value) == 0 ? value : 0;
}

bool Socket::setTCPNoDelay(bool on) {
    return SetOption(SocketOption::noDelay, on ? 1 : 0);
}

bool Socket::getTCPNoDelay() const {
    return GetOption(SocketOption::noDelay) != 0;
}

bool Socket::setBroadcast(bool on) {
    return SetOption(SocketOption::broadcast, on ? 1 : 0);
}

bool Socket::getBroadcast() const {
    return GetOption(SocketOption::broadcast) != 0;
}

bool Socket::setMulticastLoopback(bool on) {
    return SetOption(SocketOption::multicastLoopback, on ? 1 : 0);
}

bool Socket::getMulticastLoopback() const {
    return GetOption(SocketOption::multicastLoopback) != 0;
}

bool Socket::setMulticastTTL(unsigned char hops) {
    return SetOption(SocketOption::multicastTtl, hops);
}

int Socket::getMulticastTTL() const {
    return GetOption(SocketOption::multicastTtl);
}

bool Socket::setReceiveBuffer(int bytes) {
    return SetOption(SocketOption::receiveBuffer, bytes);
}

bool Socket::SetRecvTimeout(int ms) {
    return platform::setSocketTimeout(handle_, SocketTimeout::receive, ms) == 0;
}

int Socket::GetRecvTimeout() const {
    return GetTimeout(SocketTimeout::receive);
}

bool Socket::SetSendTimeout(int ms) {
    return platform::setSocketTimeout(handle_, SocketTimeout::send, ms) == 0;
}

int Socket::GetSendTimeout() const {
    return GetTimeout(SocketTimeout::send);
}

int Socket::GetTimeout(SocketTimeout which) const {
    int ms = 0;
    int const result = SetErrno(platform::getSocketTimeout(handle_, which, ms));
    return result < 0 ? result : ms;
}

void Socket::FlushSent() {
    // Turning the delay off sends delayed data. If it is off already, nothing is delayed.
    if (type_ == SocketType::stream && !getTCPNoDelay()) {
        setTCPNoDelay(true);
        setTCPNoDelay(false);
    }
}

}  // namespace core
