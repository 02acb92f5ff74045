#include "sys/platform/Sockets.h"

#include <fcntl.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "sys/platform/Files.h"
#include "sys/platform/commonSockets.inl"
#include "sys/platform/posix/system.h"

namespace sys::platform {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

static_assert(EAGAIN == EWOULDBLOCK, "the headers have one name for it");

int const lowestDescriptor = 3;

/// Moves a socket out of the numbers of the standard streams, one of which may be closed. Returns
/// the socket or a negative errno value.
SocketHandle aboveStandardStreams(int socket) {
    if (socket < 0 || socket >= lowestDescriptor) {
        return socket;
    }
    int const moved = fcntl(socket, F_DUPFD_CLOEXEC, lowestDescriptor);
    int const result = moved >= 0 ? moved : -errno;
    close(socket);
    return result;
}

/// poll, not select: a descriptor of 1,024 or more would make select write past its set.
int waitFor(SocketHandle socket, short events, int ms) {
    if (socket == noSocket) {
        return -EBADF;  // poll would ignore it and wait
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
            return -EBADF;
        }
        return result >= 0 ? result : -errno;
    }
}

/// Returns the result of a connect that went on while the caller waited.
int resultOfConnect(SocketHandle socket) {
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? -error : -errno;
}

/// Waits for the result of a connect that a signal interrupted: the attempt continues.
int finishConnect(SocketHandle socket) {
    pollfd waiting{socket, POLLOUT, 0};
    int const result = retryOnEintr([&] { return poll(&waiting, 1, -1); });
    if (result < 0) {
        return result;
    }
    return resultOfConnect(socket);
}

using NameCall = int (*)(int, sockaddr*, socklen_t*);

int readName(NameCall call, SocketHandle socket, void* address, int& length) {
    auto size = static_cast<socklen_t>(length);
    int const result = negativeErrno(call(socket, static_cast<sockaddr*>(address), &size));
    length = static_cast<int>(size);
    return result;
}

}  // namespace

int startSockets() {
    return 0;
}

void stopSockets() {}

SocketHandle openSocket(SocketDomain domain, SocketType type) {
    return aboveStandardStreams(retryOnEintr([&] {
        return socket(domainNumber(domain), typeNumber(type) | SOCK_CLOEXEC, protocolNumber(type));
    }));
}

int closeSocket(SocketHandle socket) {
    return closeFile(socket);
}

int resetSocket(SocketHandle socket) {
    linger const noLinger{1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &noLinger, sizeof noLinger);
    return closeFile(socket);
}

int shutdownSending(SocketHandle socket) {
    return negativeErrno(shutdown(socket, SHUT_WR));
}

int shutdownBoth(SocketHandle socket) {
    return negativeErrno(shutdown(socket, SHUT_RDWR));
}

int connectSocket(SocketHandle socket, void const* address, int length) {
    int const result =
        negativeErrno(connect(socket, asAddress(address), static_cast<socklen_t>(length)));
    return result == -EINTR ? finishConnect(socket) : result;
}

int connectSocket(SocketHandle socket, void const* address, int length, int ms) {
    int const begun = connectSocket(socket, address, length);
    return begun == -EINPROGRESS ? waitForConnect(socket, ms, resultOfConnect) : begun;
}

int bindSocket(SocketHandle socket, void const* address, int length) {
    int const on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    return negativeErrno(bind(socket, asAddress(address), static_cast<socklen_t>(length)));
}

int listenSocket(SocketHandle socket, int backlog) {
    return negativeErrno(listen(socket, backlog));
}

SocketHandle acceptSocket(SocketHandle socket, void* address, int& length) {
    auto size = static_cast<socklen_t>(length);
    int const accepted = retryOnEintr(
        [&] { return accept4(socket, static_cast<sockaddr*>(address), &size, SOCK_CLOEXEC); });
    length = static_cast<int>(size);
    return aboveStandardStreams(accepted);
}

int sendBytes(SocketHandle socket, void const* data, int length) {
    return retryOnEintr(
        [&] { return send(socket, data, static_cast<std::size_t>(length), MSG_NOSIGNAL); });
}

int receiveBytes(SocketHandle socket, void* buffer, int length) {
    return retryOnEintr([&] { return recv(socket, buffer, static_cast<std::size_t>(length), 0); });
}

int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength) {
    return retryOnEintr([&] {
        return sendto(socket, data, static_cast<std::size_t>(length), MSG_NOSIGNAL,
                      asAddress(address), static_cast<socklen_t>(addressLength));
    });
}

int receiveDatagram(SocketHandle socket, void* buffer, int length, void* address,
                    int& addressLength) {
    auto size = static_cast<socklen_t>(addressLength);
    int const got = retryOnEintr([&] {
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

int setNonBlocking(SocketHandle socket, bool nonBlocking) {
    int const flags = fcntl(socket, F_GETFL);
    if (flags < 0) {
        return -errno;
    }
    int const wanted = nonBlocking ? flags | O_NONBLOCK : flags & ~O_NONBLOCK;
    return negativeErrno(fcntl(socket, F_SETFL, wanted));
}

int setSocketOption(SocketHandle socket, SocketOption option, int value) {
    auto const [level, name] = nameOf(option);
    return negativeErrno(setsockopt(socket, level, name, &value, sizeof value));
}

int getSocketOption(SocketHandle socket, SocketOption option, int& value) {
    auto const [level, name] = nameOf(option);
    int found = 0;
    socklen_t size = sizeof found;
    int const result = negativeErrno(getsockopt(socket, level, name, &found, &size));
    value = found;
    return result;
}

int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms) {
    timeval const time{ms / 1000, ms % 1000 * 1000L};
    return negativeErrno(setsockopt(socket, SOL_SOCKET, nameOf(which), &time, sizeof time));
}

int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms) {
    timeval time{};
    socklen_t size = sizeof time;
    int const result = negativeErrno(getsockopt(socket, SOL_SOCKET, nameOf(which), &time, &size));
    ms = static_cast<int>(time.tv_sec * 1000 + time.tv_usec / 1000);
    return result;
}

int localAddress(SocketHandle socket, void* address, int& length) {
    return readName(&getsockname, socket, address, length);
}

int peerAddress(SocketHandle socket, void* address, int& length) {
    return readName(&getpeername, socket, address, length);
}

namespace {

int lengthOf(sockaddr const* address) {
    if (address == nullptr) {
        return 0;
    }
    return address->sa_family == AF_INET ? static_cast<int>(sizeof(sockaddr_in))
                                         : static_cast<int>(sizeof(sockaddr_in6));
}

}  // namespace

int listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context) {
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0) {
        return -errno;
    }
    for (ifaddrs const* entry = all; entry != nullptr; entry = entry->ifa_next) {
        sockaddr const* const address = entry->ifa_addr;
        if (address == nullptr ||
            (address->sa_family != AF_INET && address->sa_family != AF_INET6)) {
            continue;
        }
        // The family of a mask may be unset: it is that of the address.
        each({entry->ifa_name, address, lengthOf(address), entry->ifa_netmask,
              entry->ifa_netmask != nullptr ? lengthOf(address) : 0},
             context);
    }
    freeifaddrs(all);
    return 0;
}

}  // namespace sys::platform
