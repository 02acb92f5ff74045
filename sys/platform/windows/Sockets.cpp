#include "sys/platform/Sockets.h"

#include <winsock2.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>
#include <mswsock.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string>
#include <vector>

#include "sys/platform/commonSockets.inl"
#include "sys/platform/windows/system.h"

namespace sys::platform {

namespace {

/// Handles of system objects have at most 32 significant bits, in 64-bit programs too.
SOCKET asSocket(SocketHandle socket) {
    return static_cast<SOCKET>(socket);
}

/// The negative errno value of the calling thread's last failed socket call.
int negativeSocketError() {
    return -errnoOf(static_cast<unsigned long>(WSAGetLastError()));
}

/// Returns the result of a socket call: a count, or the negative errno value.
int countOf(int result) {
    return result >= 0 ? result : negativeSocketError();
}

/// Returns the result of a connect that went on while the caller waited.
int resultOfConnect(SocketHandle socket) {
    int error = 0;
    int size = sizeof error;
    if (getsockopt(asSocket(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error),
                   &size) != 0) {
        return negativeSocketError();
    }
    return error == 0 ? 0 : -errnoOf(static_cast<unsigned long>(error));
}

SocketHandle handleOf(SOCKET socket) {
    return socket == INVALID_SOCKET ? negativeSocketError() : static_cast<SocketHandle>(socket);
}

fd_set setOf(SocketHandle socket) {
    fd_set set{};
    set.fd_count = 1;
    set.fd_array[0] = asSocket(socket);
    return set;
}

/// One socket per call: a set holds 64 and silently drops the rest.
int waitFor(SocketHandle socket, bool toRead, int ms) {
    if (socket == noSocket) {
        return -EBADF;
    }
    int const limit = std::max(ms, 0);
    timeval time{limit / 1000, limit % 1000 * 1000};
    fd_set ready = setOf(socket);
    // A failed connect shows nowhere else.
    fd_set failed = setOf(socket);
    int const result = select(0, toRead ? &ready : nullptr, toRead ? nullptr : &ready,
                              toRead ? nullptr : &failed, &time);
    return result > 0 ? 1 : countOf(result);
}

/// A datagram to a closed port would otherwise make the next receive fail.
void ignoreUnreachable(SOCKET socket) {
    BOOL report = FALSE;
    DWORD written = 0;
    WSAIoctl(socket, SIO_UDP_CONNRESET, &report, sizeof report, nullptr, 0, &written, nullptr,
             nullptr);
}

/// Returns the result of a receive: a truncated datagram is not an error.
int receivedBytes(int result, int length) {
    return result < 0 && WSAGetLastError() == WSAEMSGSIZE ? length : countOf(result);
}

}  // namespace

int startSockets() {
    WSADATA data;
    int const error = WSAStartup(MAKEWORD(2, 2), &data);
    return error == 0 ? 0 : -errnoOf(static_cast<unsigned long>(error));
}

void stopSockets() {
    WSACleanup();
}

SocketHandle openSocket(SocketDomain domain, SocketType type) {
    SOCKET const socket = WSASocketW(domainNumber(domain), typeNumber(type), protocolNumber(type),
                                     nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    SocketHandle const opened = handleOf(socket);
    if (opened >= 0 && type == SocketType::datagram) {
        ignoreUnreachable(socket);
    }
    return opened;
}

int closeSocket(SocketHandle socket) {
    return countOf(closesocket(asSocket(socket)));
}

int resetSocket(SocketHandle socket) {
    linger const noLinger{1, 0};
    setsockopt(asSocket(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<char const*>(&noLinger),
               sizeof noLinger);
    return closeSocket(socket);
}

int shutdownSending(SocketHandle socket) {
    return countOf(shutdown(asSocket(socket), SD_SEND));
}

int shutdownBoth(SocketHandle socket) {
    return countOf(shutdown(asSocket(socket), SD_BOTH));
}

int connectSocket(SocketHandle socket, void const* address, int length) {
    return countOf(connect(asSocket(socket), asAddress(address), length));
}

int connectSocket(SocketHandle socket, void const* address, int length, int ms) {
    int const begun = connectSocket(socket, address, length);
    return begun == -EWOULDBLOCK ? waitForConnect(socket, ms, resultOfConnect) : begun;
}

int bindSocket(SocketHandle socket, void const* address, int length) {
    // Any other program could otherwise bind to the same port, even while it is in use. The effect
    // of SO_REUSEADDR on POSIX systems is the default here.
    BOOL const on = TRUE;
    setsockopt(asSocket(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
               reinterpret_cast<char const*>(&on), sizeof on);
    return countOf(bind(asSocket(socket), asAddress(address), length));
}

int listenSocket(SocketHandle socket, int backlog) {
    return countOf(listen(asSocket(socket), backlog));
}

SocketHandle acceptSocket(SocketHandle socket, void* address, int& length) {
    SocketHandle const accepted =
        handleOf(accept(asSocket(socket), static_cast<sockaddr*>(address), &length));
    if (accepted >= 0) {
        setNonBlocking(accepted, false);  // a mode that it inherits from the listener
    }
    return accepted;
}

int sendBytes(SocketHandle socket, void const* data, int length) {
    return countOf(send(asSocket(socket), static_cast<char const*>(data), length, 0));
}

int receiveBytes(SocketHandle socket, void* buffer, int length) {
    return receivedBytes(recv(asSocket(socket), static_cast<char*>(buffer), length, 0), length);
}

int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength) {
    return countOf(sendto(asSocket(socket), static_cast<char const*>(data), length, 0,
                          asAddress(address), addressLength));
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

int setNonBlocking(SocketHandle socket, bool nonBlocking) {
    u_long wanted = nonBlocking ? 1 : 0;
    // The macro of the command has a wider type than the parameter.
    return countOf(ioctlsocket(asSocket(socket), static_cast<long>(FIONBIO), &wanted));
}

int setSocketOption(SocketHandle socket, SocketOption option, int value) {
    auto const [level, name] = nameOf(option);
    return countOf(setsockopt(asSocket(socket), level, name, reinterpret_cast<char const*>(&value),
                              sizeof value));
}

int getSocketOption(SocketHandle socket, SocketOption option, int& value) {
    auto const [level, name] = nameOf(option);
    int found = 0;
    int size = sizeof found;
    int const result =
        countOf(getsockopt(asSocket(socket), level, name, reinterpret_cast<char*>(&found), &size));
    value = found;
    return result;
}

int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms) {
    // In milliseconds, not in a timeval as on POSIX systems.
    return countOf(setsockopt(asSocket(socket), SOL_SOCKET, nameOf(which),
                              reinterpret_cast<char const*>(&ms), sizeof ms));
}

int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms) {
    int size = sizeof ms;
    return countOf(getsockopt(asSocket(socket), SOL_SOCKET, nameOf(which),
                              reinterpret_cast<char*>(&ms), &size));
}

int localAddress(SocketHandle socket, void* address, int& length) {
    return countOf(getsockname(asSocket(socket), static_cast<sockaddr*>(address), &length));
}

int peerAddress(SocketHandle socket, void* address, int& length) {
    return countOf(getpeername(asSocket(socket), static_cast<sockaddr*>(address), &length));
}

namespace {

/// Sets the leading bits of an address that is 0.
void setLeadingBits(unsigned char* bytes, unsigned count) {
    for (unsigned bit = 0; bit < count; ++bit) {
        bytes[bit / 8] = static_cast<unsigned char>(bytes[bit / 8] | (0x80U >> bit % 8));
    }
}

/// Returns the netmask of an address, of which the operating system reports the prefix length.
sockaddr_storage maskOf(IP_ADAPTER_UNICAST_ADDRESS const& entry) {
    sockaddr_storage mask{};
    mask.ss_family = entry.Address.lpSockaddr->sa_family;
    if (mask.ss_family == AF_INET) {
        auto& bytes = reinterpret_cast<sockaddr_in&>(mask).sin_addr;
        setLeadingBits(reinterpret_cast<unsigned char*>(&bytes),
                       entry.OnLinkPrefixLength <= 32 ? entry.OnLinkPrefixLength : 32);
    } else {
        setLeadingBits(reinterpret_cast<sockaddr_in6&>(mask).sin6_addr.s6_addr,
                       entry.OnLinkPrefixLength <= 128 ? entry.OnLinkPrefixLength : 128);
    }
    return mask;
}

/// Stores the list of adapters in the form of the operating system.
int readAdapters(std::vector<std::max_align_t>& adapters) {
    ULONG const flags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
    ULONG size = 16 * 1024;
    ULONG result = ERROR_BUFFER_OVERFLOW;
    // The list may grow between two calls, but hardly forever.
    for (int attempt = 0; attempt < 5 && result == ERROR_BUFFER_OVERFLOW; ++attempt) {
        adapters.resize(size / sizeof(std::max_align_t) + 1);
        result =
            GetAdaptersAddresses(AF_UNSPEC, flags, nullptr,
                                 reinterpret_cast<IP_ADAPTER_ADDRESSES*>(adapters.data()), &size);
    }
    return result == ERROR_SUCCESS ? 0 : -errnoOf(result);
}

}  // namespace

int listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context) {
    std::vector<std::max_align_t> adapters;
    int const result = readAdapters(adapters);
    if (result != 0) {
        return result;
    }
    auto const* adapter = reinterpret_cast<IP_ADAPTER_ADDRESSES const*>(adapters.data());
    for (; adapter != nullptr; adapter = adapter->Next) {
        std::string const name = toUtf8(adapter->FriendlyName);
        for (auto const* entry = adapter->FirstUnicastAddress; entry != nullptr;
             entry = entry->Next) {
            int const family = entry->Address.lpSockaddr->sa_family;
            if (family != AF_INET && family != AF_INET6) {
                continue;
            }
            int const length = entry->Address.iSockaddrLength;
            sockaddr_storage const mask = maskOf(*entry);
            each({name.c_str(), entry->Address.lpSockaddr, length, &mask, length}, context);
        }
    }
    return 0;
}

}  // namespace sys::platform
