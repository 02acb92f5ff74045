#pragma once

#include <array>
#include <memory>

#include "core/net/IPv4Address.h"
#include "core/net/ServerSocketThread.h"
#include "core/net/Socket.h"
#include "core/net/SocketResult.h"
#include "core/net/SocketTypes.h"
#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/text/String.h"

namespace core {

/// Listens on up to 32 local addresses, one worker thread each, and hands every connection to
/// HandleConnection. The table of addresses belongs to one thread; handlers of different addresses
/// run at the same time.
class ServerSocket : public BasicClass {
public:
    static constexpr int maxBinds = 32;

    explicit ServerSocket(SocketType type);
    ServerSocket(ServerSocket const&) = delete;
    ServerSocket& operator=(ServerSocket const&) = delete;
    /// Stops the workers and waits for them. A derived class calls StopListen in its own
    /// destructor, because its handler is gone by now.
    ~ServerSocket() override;

    char const* ClassName() const override;

    /// Adds an address, host "|" service; its index, or -1 when all 32 are taken.
    int AddBind(String const& text);
    int AddBind(IPv4Address const& address);
    int BindsCount() const { return count_; }
    /// The text of an address; empty when there is none at index.
    String GetBind(int index) const;
    /// Empties the place of an address and moves those behind it down by one; -1 when there is none
    /// at index, -2 when it has a worker. The count is raised by one, not lowered: with n addresses
    /// before, places n - 1 and n are empty after. Programs that remove and add again rely on the
    /// free places; a full table stays at 32.
    int RemoveBind(int index);
    /// Removes all addresses that have no worker. Those that have one move down to fill the gaps.
    void ClearBinds();

    /// The address that a served slot is really bound to: it differs from GetBind where the port
    /// was 0 and a free one was taken. Empty when the slot is not served.
    String GetBoundName(int index) const;

    /// Starts a worker for every address: the number started, 0 when some are already served, -1
    /// when there are none or none could be started.
    int StartListen();
    /// Starts the worker of one address; connections are taken from then on.
    SocketResult StartOne(int index);
    /// Why the last StartListen or StartOne could not start an address, as an errno value; 0 if it
    /// started all. Of several failures StartListen keeps the first. EADDRINUSE, EADDRNOTAVAIL
    /// (also for a name without an address), EACCES, EMFILE and ENFILE (descriptors), ENOMEM and
    /// EAGAIN (threads) are usual; EINVAL: there is no such address, EALREADY: it is served.
    int LastError() const { return lastError_; }
    bool IsListening() const;
    /// Whether the address has no worker or a finished one.
    bool Terminated(int index) const;

    /// Tells all workers to end and waits up to timeoutMs milliseconds for them; a worker that is
    /// still in its handler then stays. A negative time waits as long as it takes.
    void StopListen(long long timeoutMs);
    void StopOne(int index, long long timeoutMs);

    /// Calls the handler for a connection, as if it had come in on the address at index.
    void DoAccept(ClassRef<Socket>& accepted, int index);

protected:
    /// Called on the worker's thread with the accepted socket (for datagrams: the worker's own),
    /// the text of the address that it came in on, and its index. The connection closes with the
    /// last reference to the socket. An exception ends only this call: the worker releases the
    /// connection, pauses for 50 ms and serves the next one.
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
    /// Calls the handler on a worker's thread, with the worker's own copy of the address.
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
