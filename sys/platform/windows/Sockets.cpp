#include "sys/platform/Sockets.h"

#include <winsock2.h>
#include <ws2tcpip.h>
#include <mswsock.h>

#include <algorithm>
#include <cerrno>

#include "sys/platform/commonSockets.inl"
#include "sys/platform/windows/errors.h"

namespace sys::platform {

namespace {

/// Handles of the system's objects fit into 32 bits, in 64-bit programs too.
SOCKET asSocket(SocketHandle socket) {
    return static_cast<SOCKET>(socket);
}

SocketHandle asHandle(SOCKET socket) {
    return socket == INVALID_SOCKET ? noSocket : static_cast<SocketHandle>(socket);
}

fd_set setOf(SocketHandle socket) {
    fd_set set{};
    set.fd_count = 1;
    set.fd_array[0] = asSocket(socket);
    return set;
}

/// One socket a call: a set holds 64 and drops the rest in silence.
int waitFor(SocketHandle socket, bool toRead, int ms) {
    if (socket == noSocket) {
        WSASetLastError(WSAEBADF);
        return -1;
    }
    int const limit = std::max(ms, 0);
    timeval time{limit / 1000, limit % 1000 * 1000};
    fd_set ready = setOf(socket);
    // A connect that failed shows nowhere else.
    fd_set failed = setOf(socket);
    int const result = select(0, toRead ? &ready : nullptr, toRead ? nullptr : &ready,
                              toRead ? nullptr : &failed, &time);
    return result > 0 ? 1 : result;
}

/// A datagram that nobody took would otherwise make the next receive fail.
void ignoreUnreachable(SOCKET socket) {
    BOOL report = FALSE;
    DWORD written = 0;
    WSAIoctl(socket, SIO_UDP_CONNRESET, &report, sizeof report, nullptr, 0, &written, nullptr,
             nullptr);
}

/// What a receive returned; a datagram of which only a part fitted came all the same.
int receivedBytes(int result, int length) {
    return result < 0 && WSAGetLastError() == WSAEMSGSIZE ? length : result;
}

}  // namespace
bool startSockets() {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

void stopSockets() {
    WSACleanup();
}

int lastSocketError() {
    return errnoOf(static_cast<unsigned long>(WSAGetLastError()));
}

bool wouldBlock(int error) {
    return error == EWOULDBLOCK;
}

SocketHandle openSocket(SocketDomain domain, SocketType type) {
    SOCKET const socket = WSASocketW(domainNumber(domain), typeNumber(type), protocolNumber(type),
                                     nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (socket != INVALID_SOCKET && type == SocketType::datagram) {
        ignoreUnreachable(socket);
    }
    return asHandle(socket);
}

int closeSocket(SocketHandle socket) {
    return closesocket(asSocket(socket));
}

int resetSocket(SocketHandle socket) {
    linger const dropAtOnce{1, 0};
    setsockopt(asSocket(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<char const*>(&dropAtOnce),
               sizeof dropAtOnce);
    return closeSocket(socket);
}

int shutdownSending(SocketHandle socket) {
    return shutdown(asSocket(socket), SD_SEND);
}

int shutdownBoth(SocketHandle socket) {
    return shutdown(asSocket(socket), SD_BOTH);
}

int connectSocket(SocketHandle socket, void const* address, int length) {
    return connect(asSocket(socket), asAddress(address), length);
}

int bindSocket(SocketHandle socket, void const* address, int length) {
    // Any other program could otherwise take the port, in use or not. What SO_REUSEADDR does
    // elsewhere this system does by itself.
    BOOL const on = TRUE;
    setsockopt(asSocket(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
               reinterpret_cast<char const*>(&on), sizeof on);
    return bind(asSocket(socket), asAddress(address), length);
}

int listenSocket(SocketHandle socket, int backlog) {
    return listen(asSocket(socket), backlog);
}

SocketHandle acceptSocket(SocketHandle socket, void* address, int& length) {
    SocketHandle const accepted =
        asHandle(accept(asSocket(socket), static_cast<sockaddr*>(address), &length));
    if (accepted != noSocket) {
        setNonBlocking(accepted, false);  // which it has from its listener
    }
    return accepted;
}

int sendBytes(SocketHandle socket, void const* data, int length) {
    return send(asSocket(socket), static_cast<char const*>(data), length, 0);
}

int receiveBytes(SocketHandle socket, void* buffer, int length) {
    return receivedBytes(recv(asSocket(socket), static_cast<char*>(buffer), length, 0), length);
}

int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength) {
    return sendto(asSocket(socket), static_cast<char const*>(data), length, 0, asAddress(address),
                  addressLength);
}

int receiveDatagram(SocketHandle socket, void* buffer, int length, void* address,
                    int& addressLength) {
    int const got = recvfrom(asSocket(socket), static_cast<char*>(buffer), length, 0,
                             static_cast<sockaddr*>(address), &addressLength);
    return receivedBytes(got, length);
}

int waitReadable(SocketHandle socket, int ms) {
    return waitFor(socket, true, ms);
}

int waitWritable(SocketHandle socket, int ms) {
    return waitFor(socket, false, ms);
}

bool setNonBlocking(SocketHandle socket, bool nonBlocking) {
    u_long wanted = nonBlocking ? 1 : 0;
    // The macro of the command is a signed number wider than the call's parameter.
    return ioctlsocket(asSocket(socket), static_cast<long>(FIONBIO), &wanted) == 0;
}

int setSocketOption(SocketHandle socket, SocketOption option, int value) {
    auto const [level, name] = nameOf(option);
    return setsockopt(asSocket(socket), level, name, reinterpret_cast<char const*>(&value),
                      sizeof value);
}

int getSocketOption(SocketHandle socket, SocketOption option, int& value) {
    auto const [level, name] = nameOf(option);
    int found = 0;
    int size = sizeof found;
    int const result =
        getsockopt(asSocket(socket), level, name, reinterpret_cast<char*>(&found), &size);
    value = found;
    return result;
}

int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms) {
    // The system counts in milliseconds itself, where others take seconds and microseconds.
    return setsockopt(asSocket(socket), SOL_SOCKET, nameOf(which),
                      reinterpret_cast<char const*>(&ms), sizeof ms);
}

int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms) {
    int size = sizeof ms;
    return getsockopt(asSocket(socket), SOL_SOCKET, nameOf(which), reinterpret_cast<char*>(&ms),
                      &size);
}

int localAddress(SocketHandle socket, void* address, int& length) {
    return getsockname(asSocket(socket), static_cast<sockaddr*>(address), &length);
}

int peerAddress(SocketHandle socket, void* address, int& length) {
    return getpeername(asSocket(socket), static_cast<sockaddr*>(address), &length);
}

}  // namespace sys::platform
