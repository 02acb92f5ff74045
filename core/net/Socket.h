#pragma once

#include "core/net/AddressInfo.h"
#include "core/net/IPeer.h"
#include "core/net/SocketAddr.h"
#include "core/net/SocketResult.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/object/IStream.h"
#include "core/text/String.h"

namespace core {

/// One socket of the platform, which it owns and closes. Used by one thread at a time. Operations
/// that answer a SocketResult give 0 for success; those that answer a number of bytes give -1 for
/// failure. No operation prints, throws or raises a signal.
class Socket : public BasicClass, public IPeer, public IStream {
public:
    /// Starts the platform's socket library, once before the first socket; true on success.
    static bool init();
    static void done();

    /// Creates the platform's socket. When that fails, the domain and type stay unspecified and
    /// the caller learns of it at the first use.
    Socket(SocketDomain domain, SocketType type);
    /// Takes over an open handle that is connected to peer.
    Socket(sys::platform::SocketHandle handle, ClassRef<SocketAddr> const& peer, SocketType type);
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;
    /// Ends the sending side and closes.
    ~Socket() override;

    char const* ClassName() const override;

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
    bool Connect() override;
    bool IsConnected() const override;
    bool GetTarget(String& target) const override;
    void SetTarget(String const& target) override;

    /// Binds to the first address of the chain that can be bound.
    SocketResult Bind(ClassRef<AddressInfo> const& info);
    SocketResult Bind(ClassRef<SocketAddr> const& address);
    /// Listens with the largest backlog that the platform allows.
    SocketResult Listen();
    /// Takes the next connection, waiting for it when the socket is blocking.
    SocketResult Accept(ClassRef<Socket>& accepted);

    /// The local or the peer's address as host "|" service.
    SocketResult GetSockName(String& name, bool numeric) const;
    SocketResult GetPeerName(String& name, bool numeric) const;

    /// One send: the number of bytes taken, which may be smaller than length.
    int Send(void const* data, int length);
    /// Sends the characters without the terminator.
    int Send(String const& text);
    /// One receive: the number of bytes that came; 0 when the peer has ended the stream.
    int Recv(void* buffer, int length);
    /// Whether the last Send or Recv failed only because it would have had to wait.
    bool WouldBlock() const;

    /// Gathers length bytes, until none has come for timeoutMs milliseconds: every byte that comes
    /// starts the wait anew. Returns the bytes gathered, or a negative value when the very first
    /// receive failed. A peer that ends the stream does not end the wait: callers judge the count.
    int RecvUntil(void* buffer, int length, long long timeoutMs);

    /// Transfer up to length bytes within the read or write time-out, a deadline for all of them.
    int Read(void* buffer, int length) override;
    int Write(void const* data, int length) override;
    /// Milliseconds; 1000 and 2000 at first. A negative time-out leaves no time.
    bool SetReadTimeout(int ms);
    bool SetWriteTimeout(int ms);
    int GetReadTimeout() const { return readTimeout_; }
    int GetWriteTimeout() const { return writeTimeout_; }

    /// Wait at most ms milliseconds until the socket can be read or written: 1 ready, 0 time ran
    /// out, -1 error. checkRecv answers 0 at once when no socket is open.
    int checkRecv(int ms) const;
    int checkSend(int ms) const;
    bool CanRecv(int ms) const;
    bool CanSend(int ms) const;

    /// Whether calls wait, as they do at first; the mode is remembered only when it could be set.
    bool setBlocking(bool blocking);
    bool getBlocking() const { return blocking_; }

private:
    bool IsOpen() const;
    SocketResult LastResult() const;
    SocketResult ConnectOpen(SocketAddr const& address);
    int BytesOrNone(int result) const;

    String target_;
    SocketDomain domain_ = SocketDomain::unspecified;
    SocketType type_ = SocketType::unspecified;
    sys::platform::SocketHandle handle_ = sys::platform::noSocket;
    int readTimeout_ = 1000;
    int writeTimeout_ = 2000;
    bool blocking_ = true;
    int lastError_ = 0;  ///< of the last Send or Recv
};

}  // namespace core
