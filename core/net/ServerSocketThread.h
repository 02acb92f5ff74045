#pragma once

#include <atomic>

#include "core/net/Socket.h"
#include "core/object/ClassRef.h"
#include "core/runtime/Event.h"
#include "core/runtime/Thread.h"
#include "core/text/String.h"

namespace core {

class ServerSocket;

/// The worker of an address of a ServerSocket: passes its connections or datagrams to the handler,
/// one at a time, until termination is requested.
class ServerSocketThread : public Thread {
public:
    /// Serves the bound socket of the address at index. The server must outlive the worker. Without
    /// a socket the worker only waits until termination is requested.
    ServerSocketThread(ServerSocket& server, ClassRef<Socket> const& socket, int index);
    ~ServerSocketThread() override;

    char const* ClassName() const override;

    /// Sets the address's index, which changes if another address is removed.
    void SetIndex(int index) { index_ = index; }

    /// Waits up to ms milliseconds until clients can connect.
    void WaitUntilReady(int ms) { ready_.Wait(ms); }

protected:
    void Execute() override;

private:
    void ExecuteStream();
    void ExecuteDatagram();
    void ServeUntilTermination(bool (ServerSocketThread::*serve)());
    bool ServeConnection();
    bool ServeDatagram();
    bool WaitForTraffic();
    bool ListenUntilTermination();
    bool Listen();
    void DeleteSocket();

    ServerSocket& server_;
    ClassRef<Socket> socket_;
    String bind_;  ///< unshared, see String::Unique
    std::atomic<int> index_;
    Event ready_;
};

}  // namespace core
