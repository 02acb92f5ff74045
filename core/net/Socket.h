#pragma once

#include <memory>

#include "core/net/AddressInfo.h"
#include "core/net/EndPoint.h"
#include "core/net/IPeer.h"
#include "core/net/SocketAddr.h"
#include "core/net/SocketResult.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/object/IStream.h"
#include "core/text/Buffer.h"
#include "core/text/String.h"

namespace core {

/// One socket of the platform, which it owns and closes. Used by one thread at a time. Operations
/// that answer a SocketResult give 0 for success; those that answer a number of bytes give -1 for
/// failure. No operation prints, throws or raises a signal.
class Socket : public BasicClass, public IPeer, public IStream {
public:
    /// Starts the platform's socket library, once before the first socket; true on success.
    static bool init();
    /// Takes one start back; always 0.
    static int done();

    /// What a wait for readiness came to.
    enum class Readiness { ready, timedOut, badHandle, interrupted, invalid, noMemory, failed };

    /// Creates the platform's socket. When that fails, the domain and type stay unspecified and
    /// the caller learns of it at the first use.
    Socket(SocketDomain domain, SocketType type);
    /// Take over an open handle that is connected to peer.
    Socket(sys::platform::SocketHandle handle, ClassRef<SocketAddr> const& peer, SocketType type);
    Socket(sys::platform::SocketHandle handle, EndPoint const& peer);
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;
    /// Ends the sending side and closes.
    ~Socket() override;

    char const* ClassName() const override;

    /// As they were given when the socket was made.
    SocketDomain GetDomain() const { return domain_; }
    SocketType GetType() const { return type_; }

    bool IsOpen() const { return handle_ != sys::platform::noSocket; }

    /// 4 when a socket is already open.
    SocketResult CreateTheSocket(SocketDomain domain, SocketType type);
    /// Ends the sending side and closes; 4 when no socket is open.
    SocketResult Close();
    /// Ends the sending side, or both, and closes; false when no socket is open.
    bool CloseTheSocket(bool both);
    /// Ends the sending side only: the peer reads the end of the stream, and what it still sends
    /// can be received.
    bool ShutdownSend();
    /// Closes with a reset: what is under way is lost and the peer's next call fails. False when no
    /// socket is open.
    bool Abort();

    // Connecting waits as long as the platform's connect does.

    /// Resolves text (host "|" service) in the socket's own domain and type and tries what was
    /// found in order; 12 when that is nothing, else the result of the last attempt.
    SocketResult Connect(String const& text);
    SocketResult Connect(ClassRef<AddressInfo> const& info);
    SocketResult Connect(ClassRef<SocketAddr> const& address);
    SocketResult Connect(EndPoint const& endPoint);
    bool Connect() override;
    bool IsConnected() const override;
    bool GetTarget(String& target) const override;
    void SetTarget(String const& target) override;

    /// Bind to a local address: the text is resolved in the socket's own domain and type (12 when
    /// nothing is found), and the first address of a chain that can be bound is taken.
    SocketResult Bind(String const& text);
    SocketResult Bind(ClassRef<AddressInfo> const& info);
    SocketResult Bind(ClassRef<SocketAddr> const& address);
    SocketResult Bind(EndPoint const& endPoint);
    /// Whether the socket has a local port.
    bool IsBound() const;
    /// Listens with the largest backlog that the platform allows.
    SocketResult Listen();
    /// Takes the next connection, waiting for it when the socket is blocking.
    SocketResult Accept(ClassRef<Socket>& accepted);

    /// The local or the peer's address as host "|" service.
    SocketResult GetSockName(String& name, bool numeric) const;
    SocketResult GetPeerName(String& name, bool numeric) const;
    SocketResult GetSockName(EndPoint& endPoint) const;
    SocketResult GetPeerName(EndPoint& endPoint) const;

    /// One send: the number of bytes taken, which may be smaller than length.
    int Send(void const* data, int length);
    int Send(Buffer const& bytes);
    /// Sends the characters without the terminator.
    int Send(String const& text);
    /// One receive: the number of bytes that came; 0 when the peer has ended the stream.
    int Recv(void* buffer, int length);
    /// Whether the last Send or Recv failed only because it would have had to wait.
    bool WouldBlock() const;
    /// The errno value of the last failure of this socket to be created, to connect, bind, listen,
    /// accept, send or receive; 0 after a send or receive that succeeded.
    int LastError() const { return lastError_; }

    /// Gathers length bytes, until none has come for timeoutMs milliseconds: every byte that comes
    /// starts the wait anew. Returns the bytes gathered, or a negative value when the very first
    /// receive failed. A peer that ends the stream does not end the wait: callers judge the count.
    int RecvUntil(void* buffer, int length, long long timeoutMs);

    /// Transfer up to length bytes within timeoutMs milliseconds, a deadline for all of them: the
    /// number transferred, or a negative value when the very first attempt failed, as it does at
    /// once for writing to a closed socket. A negative time-out leaves no time. A peer that stops
    /// reading does not prolong the deadline.
    int _Read(void* buffer, int length, int timeoutMs);
    int _Write(void const* data, int length, int timeoutMs);
    /// The same within the read or the write time-out.
    int Read(void* buffer, int length) override { return _Read(buffer, length, readTimeout_); }
    int Write(void const* data, int length) override { return _Write(data, length, writeTimeout_); }
    /// Milliseconds; 1000 and 2000 at first.
    bool SetReadTimeout(int ms);
    bool SetWriteTimeout(int ms);
    int GetReadTimeout() const { return readTimeout_; }
    int GetWriteTimeout() const { return writeTimeout_; }

    // Datagrams. Each call is one datagram.

    /// Sends length bytes to an address; a text is resolved in the socket's own domain and type.
    /// The bytes taken; -1 also when there is no address.
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
    /// To the port of all hosts of the network; the socket needs setBroadcast.
    int Broadcast(void const* data, int length, int port);
    /// Receives into buffer, which cuts a longer datagram, and tells the sender; on failure the
    /// sender stays as it was.
    int RecvFrom(void* buffer, int length, ClassRef<SocketAddr>& from);
    int RecvFrom(void* buffer, int length, ClassRef<EndPoint>& from);
    int RecvFrom(void* buffer, int length, String& from);
    /// Receives a datagram of any size; on failure bytes are empty.
    template <class Sender>
    int RecvAllFrom(Buffer& bytes, Sender& from) {
        return RecvAll(bytes, [&](void* room, int size) { return RecvFrom(room, size, from); });
    }

    /// Wait at most ms milliseconds until the socket can be read or written: 1 ready, 0 time ran
    /// out, -1 error. When no socket is open, checkRecv returns 0 and checkSend -1, at once.
    int checkRecv(int ms) const;
    int checkSend(int ms) const;
    bool CanRecv(int ms) const;
    bool CanSend(int ms) const;
    /// The same, with what failed in the place of -1.
    Readiness CheckRecv(int ms) const;
    Readiness CheckSend(int ms) const;
    /// What a result of the two checks means; asks the platform for the error of a negative one.
    static Readiness fromSelectResult(int result);

    /// Whether calls wait, as they do at first; the mode is remembered only when it could be set.
    bool setBlocking(bool blocking);
    bool getBlocking() const { return blocking_; }

    // Options: true when they were set, and their value; false or 0 when it cannot be read.

    bool setTCPNoDelay(bool on);
    bool getTCPNoDelay() const;
    bool setBroadcast(bool on);
    bool getBroadcast() const;
    bool setMulticastLoopback(bool on);
    bool getMulticastLoopback() const;
    bool setMulticastTTL(unsigned char hops);
    int getMulticastTTL() const;
    /// How many bytes the system holds until they are received, about: it rounds as it likes.
    bool setReceiveBuffer(int bytes);
    // No platform of ours has these; they are part of what sockets elsewhere can do.
    bool setCorkMode(bool) { return false; }
    bool getCorkMode() const { return false; }
    bool setMulticastInterface(IPv4Address const&) { return false; }
    bool getMulticastInterface(IPv4Address&) const { return false; }
    bool joinMulticastGroup(IPv4Address const&, IPv4Address const&) { return false; }
    bool leaveMulticastGroup(IPv4Address const&, IPv4Address const&) { return false; }

    /// How long a blocking receive or send waits, in milliseconds; 0, as at first, without end.
    /// Reading gives a negative value on failure.
    bool SetRecvTimeout(int ms);
    int GetRecvTimeout() const;
    bool SetSendTimeout(int ms);
    int GetSendTimeout() const;

    /// Makes the platform send what it holds back of a stream.
    void FlushSent();
    void Flush() { FlushSent(); }
    /// Nothing is held back on the way in.
    void FlushRecv() {}

private:
    Socket() = default;
    SocketResult Fail();
    void SetPeer(SocketAddr const& peer);
    SocketResult ConnectOpen(SocketAddr const& address);
    SocketResult ReadEndPoint(ClassRef<SocketAddr> const& address, EndPoint& endPoint) const;
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
    auto const room = std::make_unique<char[]>(largestDatagram);
    int const got = receive(room.get(), largestDatagram);
    bytes.Set(room.get(), got);
    return got;
}

}  // namespace core
