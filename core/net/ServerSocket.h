#pragma once

#include <array>
#include <memory>

#include "core/net/IPv4Address.h"
#include "core/net/ServerSocketThread.h"
#include "core/net/Socket.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// Listens on up to 32 local addresses, with one worker thread each, and passes every connection
/// or datagram to HandleConnection. The public operations must be called by one thread; handlers of
/// different addresses run concurrently.
class ServerSocket : public BasicClass {
public:
    static constexpr int maxBinds = 32;

    explicit ServerSocket(SocketType type);
    ServerSocket(ServerSocket const&) = delete;
    ServerSocket& operator=(ServerSocket const&) = delete;
    /// Stops the workers and waits for them. The destructor of a derived class must call StopListen
    /// itself, because the workers use its handler.
    ~ServerSocket() override;

    char const* ClassName() const override;

    /// Adds an address, host "|" service; returns its index, or -1 if the table is full.
    int AddBind(String const& text);
    int AddBind(IPv4Address const& address);
    int BindsCount() const { return count_; }
    /// Returns the text of an address; empty if index is out of range.
    String GetBind(int index) const;
    /// Removes an address and moves those after it down by one. Returns 0, -1 if index is out of
    /// range, -2 if the address has a worker. The count is raised by one, not lowered, up to 32: of
    /// n addresses, entries n - 1 and n are empty afterwards. Callers depend on these free entries.
    int RemoveBind(int index);
    /// Removes all addresses without a worker; the others move down to fill the gaps.
    void ClearBinds();

    /// Returns the address that a worker is bound to, with the port chosen by the operating system
    /// if GetBind has port 0. Empty if the address has no worker.
    String GetBoundName(int index) const;

    /// Starts a worker for every address. Returns the number started, 0 if any worker exists
    /// already, -1 if there are no addresses or none could be started.
    int StartListen();
    /// Starts the worker of one address, which then accepts connections.
    SocketResult StartOne(int index);
    /// Returns the errno value of the first failure in the last StartListen or StartOne; 0 if there
    /// was none. Typical: EADDRINUSE, EADDRNOTAVAIL (also: name not found), EACCES, EMFILE, ENFILE,
    /// ENOMEM, EAGAIN (threads); EINVAL: no such address; EALREADY: it has a worker.
    int LastError() const { return lastError_; }
    /// Whether any address has a worker.
    bool IsListening() const;
    /// Whether the address has no worker, or a finished one.
    bool Terminated(int index) const;

    /// Requests termination of all workers, or of one, and waits for them up to timeoutMs
    /// milliseconds, indefinitely if negative. A worker still in its handler then remains.
    void StopListen(long long timeoutMs);
    void StopOne(int index, long long timeoutMs);

    /// Calls the handler on the caller's thread, as for a connection to the address at index.
    void DoAccept(ClassRef<Socket>& accepted, int index);

protected:
    /// Called on the worker's thread with the accepted socket (for datagrams: the worker's, from
    /// which to receive one), the address's text and its index. The connection closes with the last
    /// reference to the socket. After an exception the worker releases the connection, pauses for
    /// 50 ms and serves the next one.
    virtual void HandleConnection(ClassRef<Socket>& socket, String const& bind, int index) = 0;

private:
    friend class ServerSocketThread;

    struct Slot {
        String bind;
        String bound;
        std::unique_ptr<ServerSocketThread> worker;
    };

    void NumberWorkers();
    bool InUse(int index) const { return index >= 0 && index < count_; }
    SocketResult Fail(int error, SocketResult result);
    SocketResult Serve(int index);
    /// Calls the handler for a worker, with the worker's copy of the address.
    void Handle(ClassRef<Socket>& socket, String const& bind, int index) {
        HandleConnection(socket, bind, index);
    }
    void StopRange(int first, int last, long long timeoutMs);
    bool ReapFinished(int first, int last);

    SocketType type_;
    std::array<Slot, maxBinds> slots_;
    int count_ = 0;
    int lastError_ = 0;
};

}  // namespace core
