#pragma once

namespace sys::platform {

/// An open socket. The opener owns it and closes it once.
using SocketHandle = int;
inline constexpr SocketHandle noSocket = -1;

enum class SocketDomain { unspecified = 0, IPv4 = 1, IPv6 = 2 };
enum class SocketType { unspecified = 0, stream = 1, datagram = 2 };

/// Return the platform's number for a domain and a type; 0 means "any".
int domainNumber(SocketDomain domain);
int typeNumber(SocketType type);
int protocolNumber(SocketType type);

// Every operation on sockets returns 0, or the count or handle described, or a negative errno
// value. An operation that would have to wait returns -EWOULDBLOCK. No operation raises a signal.

/// Initialises the socket library; stopSockets undoes one call.
int startSockets();
void stopSockets();

/// Returns a new socket. It never has the number of a standard stream and is not inherited.
SocketHandle openSocket(SocketDomain domain, SocketType type);
/// Closes the socket; the handle is invalid afterwards, even on failure.
int closeSocket(SocketHandle socket);
/// Closes the socket with a reset of the connection: data in transit is lost, in both directions.
int resetSocket(SocketHandle socket);
/// Shut down sending (the peer reads the end of the stream), or both directions.
int shutdownSending(SocketHandle socket);
int shutdownBoth(SocketHandle socket);

/// Connects to an address of length bytes, without a timeout but the platform's.
int connectSocket(SocketHandle socket, void const* address, int length);
/// Does the same for a non-blocking socket, but waits at most ms milliseconds (-ETIMEDOUT).
int connectSocket(SocketHandle socket, void const* address, int length, int ms);
/// Binds to a local address. A listener may use the port of a listener just closed, but not a port
/// in use.
int bindSocket(SocketHandle socket, void const* address, int length);
int listenSocket(SocketHandle socket, int backlog);
/// Returns the next connection, which blocks even if the listener does not. Stores the address of
/// the peer; length is the capacity of address before the call and the size used after.
SocketHandle acceptSocket(SocketHandle socket, void* address, int& length);

/// Sends once; returns the number of bytes accepted, which may be less than length.
int sendBytes(SocketHandle socket, void const* data, int length);
/// Receives once; returns the number of bytes received, 0 at the end of the stream.
int receiveBytes(SocketHandle socket, void* buffer, int length);

/// Sends one datagram; returns the number of bytes accepted.
int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength);
/// Receives one datagram, truncated to length, and its sender, as acceptSocket does. Returns the
/// number of bytes stored.
int receiveDatagram(SocketHandle socket, void* buffer, int length, void* address,
                    int& addressLength);

/// Wait up to ms milliseconds (negative: 0) until a receive or a send would not block. Return 1 if
/// ready, 0 on timeout. Signals do not end the wait.
int waitReadable(SocketHandle socket, int ms);
int waitWritable(SocketHandle socket, int ms);

/// Sets whether operations return -EWOULDBLOCK instead of waiting.
int setNonBlocking(SocketHandle socket, bool nonBlocking);

enum class SocketOption { noDelay, broadcast, multicastLoopback, multicastTtl, receiveBuffer };
/// Set or read an option; switches are 0 and 1.
int setSocketOption(SocketHandle socket, SocketOption option, int value);
int getSocketOption(SocketHandle socket, SocketOption option, int& value);

enum class SocketTimeout { receive, send };
/// Set or read the timeout of a blocking operation in milliseconds; 0 means none.
int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms);
int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms);

/// Store the local and the peer's address; length is used as by acceptSocket.
int localAddress(SocketHandle socket, void* address, int& length);
int peerAddress(SocketHandle socket, void* address, int& length);

/// The size of the largest address, in bytes.
inline constexpr int maxAddressLength = 128;
/// Returns the domain of an address of length bytes.
SocketDomain domainOf(void const* address, int length);

/// One entry of a resolver's chain.
struct ResolvedEntry;

/// Resolves host and service, each of which may be null. Returns 0 and stores the chain, to be
/// released by freeResolved, or returns the resolver's own error number.
int resolve(char const* host, char const* service, SocketDomain domain, SocketType type,
            ResolvedEntry*& chain);
void freeResolved(ResolvedEntry* chain);
/// Return the parts of an entry; the address is valid until its chain is released.
ResolvedEntry* nextResolved(ResolvedEntry const* entry);
void const* resolvedAddress(ResolvedEntry const* entry, int& length);
int resolvedFamilyNumber(ResolvedEntry const* entry);
int resolvedTypeNumber(ResolvedEntry const* entry);
int resolvedProtocolNumber(ResolvedEntry const* entry);

/// Stores the names of an address in buffers of the given sizes; the service is always a number.
/// With numeric, no name server is asked for the host. Returns 0 or the resolver's own error
/// number.
int nameOfAddress(void const* address, int length, char* host, int hostSize, char* service,
                  int serviceSize, bool numeric);

enum class ResolverFailure { temporary, badFlags, permanent, family, memory, noName, other };
/// Classifies an error number of the resolver other than 0.
ResolverFailure resolverFailure(int error);

/// An address of a network interface of this machine. The pointers are valid during the call that
/// passes it.
struct InterfaceEntry {
    char const* name;
    void const* address;
    int addressLength;
    void const* mask;  ///< null if the address has none
    int maskLength;
};

/// Calls each with every IPv4 and IPv6 address of the machine's interfaces, and with context.
int listInterfaces(void (*each)(InterfaceEntry const& entry, void* context), void* context);

}  // namespace sys::platform
