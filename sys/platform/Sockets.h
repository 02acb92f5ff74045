#pragma once

namespace sys::platform {

/// An open socket. The opener owns it and closes it once.
using SocketHandle = int;
inline constexpr SocketHandle noSocket = -1;

enum class SocketDomain { unspecified = 0, IPv4 = 1, IPv6 = 2 };
enum class SocketType { unspecified = 0, stream = 1, datagram = 2 };

/// The platform's own numbers for a domain and a type; 0 stands for "any".
int domainNumber(SocketDomain domain);
int typeNumber(SocketType type);
int protocolNumber(SocketType type);

/// Starts the socket library; true on success. stopSockets takes one start back.
bool startSockets();
void stopSockets();

// Calls that fail return -1 and leave the reason in lastSocketError until the thread's next call.

/// The errno value of the calling thread's last failed socket call.
int lastSocketError();
/// Whether that value only says that the call would have to wait.
bool wouldBlock(int error);

/// A new socket, or noSocket. It is never one of the standard streams and is not inherited.
SocketHandle openSocket(SocketDomain domain, SocketType type);
/// Closes the socket; its handle is gone in any case.
int closeSocket(SocketHandle socket);
/// The same with a reset of the connection: bytes under way are dropped, at both ends.
int resetSocket(SocketHandle socket);
/// Ends the sending side (the peer reads the end of the stream), or both.
int shutdownSending(SocketHandle socket);
int shutdownBoth(SocketHandle socket);

/// Connects to an address of length bytes, however long the platform takes; 0 on success.
int connectSocket(SocketHandle socket, void const* address, int length);
/// Binds to a local address, 0 on success. A listener may take a port whose last owner has just
/// gone, but never one that is in use.
int bindSocket(SocketHandle socket, void const* address, int length);
int listenSocket(SocketHandle socket, int backlog);
/// The next connection, whose calls block whatever those of the listener do, or noSocket; its peer
/// is written to address, of which length is the room before and the bytes used after.
SocketHandle acceptSocket(SocketHandle socket, void* address, int& length);

/// One send: the bytes taken, which may be fewer. A peer that is gone gives -1, never a signal.
int sendBytes(SocketHandle socket, void const* data, int length);
/// One receive: the bytes that came, 0 when the peer has ended the stream.
int receiveBytes(SocketHandle socket, void* buffer, int length);

/// One datagram to an address of length bytes: the bytes taken.
int sendDatagram(SocketHandle socket, void const* data, int length, void const* address,
                 int addressLength);
/// One datagram: the bytes that fit into buffer; its sender, with room and use of address as for
/// acceptSocket.
int receiveDatagram(SocketHandle socket, void* buffer, int length, void* address,
                    int& addressLength);

/// Wait at most ms milliseconds (negative: as 0) until a receive or a send would not block:
/// 1 ready, 0 time ran out, -1 error. Signals do not end the wait.
int waitReadable(SocketHandle socket, int ms);
int waitWritable(SocketHandle socket, int ms);

/// Whether calls return at once with wouldBlock instead of waiting; true on success.
bool setNonBlocking(SocketHandle socket, bool nonBlocking);

enum class SocketOption { noDelay, broadcast, multicastLoopback, multicastTtl, receiveBuffer };
/// Sets or reads a whole number (switches are 0 and 1); 0 on success.
int setSocketOption(SocketHandle socket, SocketOption option, int value);
int getSocketOption(SocketHandle socket, SocketOption option, int& value);

enum class SocketTimeout { receive, send };
/// Sets or reads how long a blocking call waits, in milliseconds, 0 meaning without end; 0 on
/// success.
int setSocketTimeout(SocketHandle socket, SocketTimeout which, int ms);
int getSocketTimeout(SocketHandle socket, SocketTimeout which, int& ms);

/// The local and the peer's address; room and use of address as for acceptSocket. 0 on success.
int localAddress(SocketHandle socket, void* address, int& length);
int peerAddress(SocketHandle socket, void* address, int& length);

/// Room that any address fits into, in bytes.
inline constexpr int addressRoom = 128;
/// The domain that an address of length bytes belongs to.
SocketDomain domainOf(void const* address, int length);

/// One entry of a resolver's chain.
struct ResolvedEntry;

/// Resolves host (null: none) and service (null: none). Returns 0 and the chain, to be given back
/// with freeResolved; else the resolver's own error number.
int resolve(char const* host, char const* service, SocketDomain domain, SocketType type,
            ResolvedEntry*& chain);
void freeResolved(ResolvedEntry* chain);
/// The parts of an entry; the address lives as long as its chain.
ResolvedEntry* nextResolved(ResolvedEntry const* entry);
void const* resolvedAddress(ResolvedEntry const* entry, int& length);
int resolvedFamilyNumber(ResolvedEntry const* entry);
int resolvedTypeNumber(ResolvedEntry const* entry);
int resolvedProtocolNumber(ResolvedEntry const* entry);

/// The texts of an address, into buffers of the given sizes; numeric asks no name server for the
/// host. The service is always a number. 0, or the resolver's own error number.
int nameOfAddress(void const* address, int length, char* host, int hostSize, char* service,
                  int serviceSize, bool numeric);

enum class ResolverFailure { temporary, badFlags, permanent, family, memory, noName, other };
/// What an error number of the resolver, which must not be 0, means.
ResolverFailure resolverFailure(int error);

}  // namespace sys::platform
