#include "sys/platform/Sockets.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "sys/platform/commonSockets.inl"

namespace sys::platform {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

int const lowestDescriptor = 3;

/// Moves a socket that took the number of a closed standard stream out of the way of it.
SocketHandle aboveStandardStreams(int socket) {
    if (socket < 0 || socket >= lowestDescriptor) {
        return socket;
    }
    int const moved = fcntl(socket, F_DUPFD_CLOEXEC, lowestDescriptor);
    int const error = errno;
    close(socket);
    errno = error;
    return moved;
}

/// poll, not select: a descriptor of 1,024 or more would make select write past its set.
int waitFor(SocketHandle socket, short events, int ms) {
    if (socket == noSocket) {
        // poll would ignore it and wait.
        errno = EBADF;
        return -1;
    }
    auto const deadline = steady_clock::now() + milliseconds(ms < 0 ? 0 : ms);
    for (;;) {
        auto const left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        pollfd waiting{socket, events, 0};
        int const result = poll(&waiting, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result > 0 && (waiting.revents & POLLNVAL) != 0) {
            errno = EBADF;
            return -1;
        }
        return result;
    }
}

/// After an interrupted connect the attempt goes on by itself; its outcome is waited for.
int finishConnect(SocketHandle socket) {
    pollfd waiting{socket, POLLOUT, 0};
    while (poll(&waiting, 1, -1) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0) {
        return -1;
    }
    errno = error;
    return error == 0 ? 0 : -1;
}

template <class Call>
int withoutInterruption(Call call) {
    for (;;) {
        auto const result = call();
        if (result >= 0 || errno != EINTR) {
            return static_cast<int>(result);
        }
    }
}

using NameCall = int (*)(int, sockaddr*, socklen_t*);

int readName(NameCall call, SocketHandle socket, void* address, int& length) {
    auto size = static_cast<socklen_t>(length);
    int const result = call(socket, static_cast<sockaddr*>(address), &size);
    length = static_cast<int>(size);
    return result;
}

}  // namespace

bool startSockets() {
    return true;
}

void stopSockets() {}

int lastSocketError() {
    return errno;
}

bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

SocketHandle openSocket(SocketDomain domain, SocketType type) {
    return aboveStandardStreams(
        socket(domainNumber(domain), typeNumber(type) | SOCK_CLOEXEC, protocolNumber(type)));
}

int closeSocket(SocketHandle socket) {
    return close(socket);
}

int resetSocket(SocketHandle socket) {
    linger const dropAtOnce{1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &dropAtOnce, sizeof dropAtOnce);
    return close(socket);
}

int shutdownSending(SocketHandle socket) {
    return shutdown(socket, SHUT_WR);
}

int shutdownBoth(SocketHandle socket) {
    return shutdown(socket, SHUT_RDWR);
}

int connectSocket(SocketHandle socket, void const* address, int length) {
    int const result = connect(socket, asAddress(address), static_cast<socklen_t>(length));
    return result != 0 && errno == EINTR ? finishConnect(socket) : result;
}

int bindSocket(SocketHandle socket, void const* address, int length) {
    int const on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    return bind(socket, asAddress(address), static_cast<socklen_t>(length));
}

int listenSocket(SocketHandle socket, int backlog) {
    return listen(socket, backlog);
}

SocketHandle acceptSocket(SocketHandle socket, void* address, int& length) {
    auto size = static_cast<socklen_t>(length);
    int const accepted = withoutInterruption(
        [&] { return accept4(socket, static_cast<sockaddr*>(address), &size, SOCK_CLOEXEC); });
    length = static_cast<int>(size);
    return aboveStandardStreams(accepted);
}

int sendBytes(SocketHandle socket, void const* data, int length) {
    return withoutInterruption(
        [&] { return send(socket, data, static_cast<std::size_t>(length), MSG_NOSIGNAL); });
}

int receiveBytes(SocketHandle socket, void* buffer, int length) {
    return withoutInterruption(
        [&] { return recv(socket, buffer, static_cast<std::size_t>(length), 0); });
}

int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength) {
    return withoutInterruption([&] {
        return sendto(socket, data, static_cast<std::size_t>(length), MSG_NOSIGNAL,
                      asAddress(address), static_cast<socklen_t>(addressLength));
    });
}

int receiveDatagram(SocketHandle socket, void* buffer, int length, void* address,
                    int& addressLength) {
    auto size = static_cast<socklen_t>(addressLength);
    int const got = withoutInterruption([&] {
        return recvfrom(socket, buffer, static_cast<std::size_t>(length), 0,
                        static_cast<sockaddr*>(address), &size);
    });
    addressLength = static_cast<int>(size);
    return got;
}

int waitReadable(SocketHandle socket, int ms) {
    return waitFor(socket, POLLIN, ms);
}

int waitWritable(SocketHandle socket, int ms) {
    return waitFor(socket, POLLOUT, ms);
}

bool setNonBlocking(SocketHandle socket, bool nonBlocking) {
    int const flags = fcntl(socket, F_GETFL);
    if (flags < 0) {
        return false;
    }
    int const wanted = nonBlocking ? flags | O_NONBLOCK : flags & ~O_NONBLOCK;
    return fcntl(socket, F_SETFL, wanted) == 0;
}

int setSocketOption(SocketHandle socket, SocketOption option, int value) {
    auto const [level, name] = nameOf(option);
    return setsockopt(socket, level, name, &value, sizeof value);
}

int getSocketOption(SocketHandle socket, SocketOption option, int& value) {
    auto const [level, name] = nameOf(option);
    int found = 0;
    socklen_t size = sizeof found;
    int const result = getsockopt(socket, level, name, &found, &size);
    value = found;
    return result;
}

int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms) {
    timeval const time{ms / 1000, ms % 1000 * 1000L};
    return setsockopt(socket, SOL_SOCKET, nameOf(which), &time, sizeof time);
}

int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms) {
    timeval time{};
    socklen_t size = sizeof time;
    int const result = getsockopt(socket, SOL_SOCKET, nameOf(which), &time, &size);
    ms = static_cast<int>(time.tv_sec * 1000 + time.tv_usec / 1000);
    return result;
}

int localAddress(SocketHandle socket, void* address, int& length) {
    return readName(&getsockname, socket, address, length);
}

int peerAddress(SocketHandle socket, void* address, int& length) {
    return readName(&getpeername, socket, address, length);
}

}  // namespace sys::platform
