#pragma once

#include <memory>

#include "core/net/AddressInfo.h"
#include "core/net/EndPoint.h"
#include "core/net/IPeer.h"
#include "core/net/SocketAddr.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/object/IStream.h"
#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

/// A socket of the platform, which it owns and closes. Not thread-safe. A SocketResult is 0 on
/// success; a number of bytes is -1 on failure. Times are in milliseconds. No operation prints or
/// raises a signal, and none throws except std::bad_alloc.
class Socket : public BasicClass, public IPeer, public IStream {
public:
    /// Starts the platform's socket library; true on success. Call it before creating a socket.
    static bool init();
    /// Undoes one init; returns 0.
    static int done();

    /// The result of a wait for readiness.
    enum class Readiness { ready, timedOut, badHandle, interrupted, invalid, noMemory, failed };

    /// Creates the platform's socket. On failure domain and type are unspecified, and the first use
    /// fails.
    Socket(SocketDomain domain, SocketType type);
    /// Take ownership of an open handle that is connected to peer.
    Socket(sys::platform::SocketHandle handle, ClassRef<SocketAddr> const& peer, SocketType type);
    Socket(sys::platform::SocketHandle handle, EndPoint const& peer);
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;
    /// Shuts down sending and closes.
    ~Socket() override;

    char const* ClassName() const override;

    /// Return the domain and type given at construction.
    SocketDomain GetDomain() const { return domain_; }
    SocketType GetType() const { return type_; }

    bool IsOpen() const { return handle_ != sys::platform::noSocket; }

    /// Opens a new socket of the platform; returns 4 if one is open.
    SocketResult CreateTheSocket(SocketDomain domain, SocketType type);
    /// Shuts down sending and closes; returns 4 if the socket is not open.
    SocketResult Close();
    /// Shuts down sending, or both directions, and closes; false if the socket is not open.
    bool CloseTheSocket(bool both);
    /// Shuts down sending: the peer reads the end of the stream and may still send. True on
    /// success.
    bool ShutdownSend();
    /// Closes with a reset: data in transit is lost and the peer's next call fails. False if the
    /// socket is not open.
    bool Abort();

    // Connecting has no timeout but that of the platform. A closed socket is opened first.

    /// Resolves text (host "|" service) in the socket's domain and type and connects to the first
    /// address possible. Returns the result of the last attempt; 12 if resolving fails.
    SocketResult Connect(String const& text);
    SocketResult Connect(ClassRef<AddressInfo> const& info);
    SocketResult Connect(ClassRef<SocketAddr> const& address);
    SocketResult Connect(EndPoint const& endPoint);
    /// Does the same, but waits at most ms milliseconds; the socket is non-blocking afterwards.
    SocketResult Connect(EndPoint const& endPoint, int ms);
    /// Connects to the target; true if connected or already open.
    bool Connect() override;
    /// Whether the socket is open and usable; a closed connection is not detected.
    bool IsConnected() const override;
    bool GetTarget(String& target) const override;
    void SetTarget(String const& target) override;

    /// Bind to a local address; text and chains are used as by Connect.
    SocketResult Bind(String const& text);
    SocketResult Bind(ClassRef<AddressInfo> const& info);
    SocketResult Bind(ClassRef<SocketAddr> const& address);
    SocketResult Bind(EndPoint const& endPoint);
    /// Whether the socket has a local port.
    bool IsBound() const;
    /// Listens with the largest backlog of the platform.
    SocketResult Listen();
    /// Accepts a connection, waiting for one if the socket is blocking. On failure accepted is
    /// unchanged.
    SocketResult Accept(ClassRef<Socket>& accepted);

    /// Get the local or the peer's address, as text host "|" service. On failure the output is
    /// unchanged.
    SocketResult GetSockName(String& name, bool numeric) const;
    SocketResult GetPeerName(String& name, bool numeric) const;
    SocketResult GetSockName(EndPoint& endPoint) const;
    SocketResult GetPeerName(EndPoint& endPoint) const;

    /// Sends once; returns the number of bytes accepted, which may be less than length.
    int Send(void const* data, int length);
    int Send(Buffer const& bytes);
    /// Sends the characters without a terminator.
    int Send(String const& text);
    /// Receives once; returns the number of bytes received, 0 at the end of the stream.
    int Recv(void* buffer, int length);
    /// Whether the last send or receive failed because it would have blocked.
    bool WouldBlock() const;
    /// Returns the errno value of the last failure to create, connect, bind, listen, accept, send
    /// or receive; 0 after a successful send or receive.
    int LastError() const { return lastError_; }

    /// Receives length bytes; each byte restarts the timeout of timeoutMs milliseconds. Returns the
    /// number received, or a negative value if the first receive failed. End of stream does not end
    /// the wait: check the count.
    int RecvUntil(void* buffer, int length, long long timeoutMs);

    /// Transfer length bytes within timeoutMs milliseconds for all of them; a negative timeout
    /// counts as 0. Return the number transferred, or a negative value if the first attempt failed.
    /// The deadline holds even if the peer stops reading.
    int _Read(void* buffer, int length, int timeoutMs);
    int _Write(void const* data, int length, int timeoutMs);
    /// Transfer length bytes within the read or the write timeout.
    int Read(void* buffer, int length) override { return _Read(buffer, length, readTimeout_); }
    int Write(void const* data, int length) override { return _Write(data, length, writeTimeout_); }
    /// Set the timeouts, initially 1000 and 2000 ms; return true.
    bool SetReadTimeout(int ms);
    bool SetWriteTimeout(int ms);
    int GetReadTimeout() const { return readTimeout_; }
    int GetWriteTimeout() const { return writeTimeout_; }

    // Datagrams. Each call sends or receives one.

    /// Sends length bytes to an address; text is resolved in the socket's domain and type. Returns
    /// the number of bytes accepted, or -1, also if resolving fails.
    int SendTo(void const* data, int length, ClassRef<SocketAddr> const& to);
    int SendTo(void const* data, int length, EndPoint const& to);
    int SendTo(void const* data, int length, String const& to);
    template <class Address>
    int SendTo(Buffer const& bytes, Address const& to) {
        return SendTo(bytes.GetData(), bytes.GetSize(), to);
    }
    template <class Address>
    int SendTo(String const& text, Address const& to) {
        return SendTo(text.getCString(), text.GetLength(), to);
    }
    int SendDatagram(void const* data, int length, EndPoint const& to);
    int SendDatagram(void const* data, int length, IPv4Address const& to);
    int SendDatagram(void const* data, int length, String const& to);
    /// Sends to the port of all hosts of the local network; requires setBroadcast.
    int Broadcast(void const* data, int length, int port);
    /// Receives a datagram, truncated to length, and its sender; on failure from is unchanged.
    int RecvFrom(void* buffer, int length, ClassRef<SocketAddr>& from);
    int RecvFrom(void* buffer, int length, ClassRef<EndPoint>& from);
    int RecvFrom(void* buffer, int length, String& from);
    /// Receives a whole datagram and its sender; on failure bytes is empty and from unchanged.
    template <class Sender>
    int RecvAllFrom(Buffer& bytes, Sender& from) {
        return RecvAll(bytes, [&](void* data, int size) { return RecvFrom(data, size, from); });
    }

    /// Wait up to ms milliseconds until the socket can be read or written. Return 1 if ready, 0 on
    /// timeout, -1 on error. If the socket is not open, return 0 and -1 at once.
    int checkRecv(int ms) const;
    int checkSend(int ms) const;
    bool CanRecv(int ms) const;
    bool CanSend(int ms) const;
    /// Wait likewise, but return the error instead of -1.
    Readiness CheckRecv(int ms) const;
    Readiness CheckSend(int ms) const;
    /// Converts a result of checkRecv or checkSend; reads errno if it is negative, so call it at
    /// once.
    static Readiness fromSelectResult(int result);

    /// Sets whether calls wait, as they do initially; true on success.
    bool setBlocking(bool blocking);
    bool getBlocking() const { return blocking_; }

    // Options. Setters return true on success; getters return false or 0 on failure.

    bool setTCPNoDelay(bool on);
    bool getTCPNoDelay() const;
    bool setBroadcast(bool on);
    bool getBroadcast() const;
    bool setMulticastLoopback(bool on);
    bool getMulticastLoopback() const;
    bool setMulticastTTL(unsigned char hops);
    int getMulticastTTL() const;
    /// Sets the approximate receive buffer size in bytes; the operating system may round it.
    bool setReceiveBuffer(int bytes);
    // Not supported: these have no effect and return false.
    bool setCorkMode(bool) { return false; }
    bool getCorkMode() const { return false; }
    bool setMulticastInterface(IPv4Address const&) { return false; }
    bool getMulticastInterface(IPv4Address&) const { return false; }
    bool joinMulticastGroup(IPv4Address const&, IPv4Address const&) { return false; }
    bool leaveMulticastGroup(IPv4Address const&, IPv4Address const&) { return false; }

    /// Set or get the timeout of a blocking receive or send, in milliseconds; 0, the initial value,
    /// means no timeout. Getters return a negative value on failure.
    bool SetRecvTimeout(int ms);
    int GetRecvTimeout() const;
    bool SetSendTimeout(int ms);
    int GetSendTimeout() const;

    /// Makes the platform send the data of a stream that it delays (Nagle's algorithm).
    void FlushSent();
    void Flush() { FlushSent(); }
    /// Does nothing: received data is not delayed.
    void FlushRecv() {}

private:
    Socket() = default;
    /// Returns result; if it is a negative errno value, sets errno and returns -1.
    static int SetErrno(int result);
    /// SetErrno, and stores the error, or 0, for LastError.
    int Remember(int result);
    /// Stores the error of a negative errno value for LastError and returns its SocketResult.
    SocketResult Fail(int result);
    void SetPeer(SocketAddr const& peer);
    SocketResult ConnectOpen(SocketAddr const& address);
    int BytesOrNone(int result) const;
    template <class Receive>
    int RecvAll(Buffer& bytes, Receive receive);
    bool SetOption(sys::platform::SocketOption option, int value);
    int GetOption(sys::platform::SocketOption option) const;
    int GetTimeout(sys::platform::SocketTimeout which) const;

    static constexpr int largestDatagram = 65'536;  ///< bytes, more than any protocol allows

    String target_;
    SocketDomain domain_ = SocketDomain::unspecified;
    SocketType type_ = SocketType::unspecified;
    sys::platform::SocketHandle handle_ = sys::platform::noSocket;
    int readTimeout_ = 1000;
    int writeTimeout_ = 2000;
    bool blocking_ = true;
    int lastError_ = 0;  ///< see LastError
};

template <class Receive>
int Socket::RecvAll(Buffer& bytes, Receive receive) {
    auto const data = std::make_unique<char[]>(largestDatagram);
    int const got = receive(data.get(), largestDatagram);
    bytes.Set(data.get(), got);
    return got;
}

}  // namespace core
