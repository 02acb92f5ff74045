#pragma once

#include <atomic>

#include "core/net/Socket.h"
#include "core/object/ClassRef.h"
#include "core/runtime/Event.h"
#include "core/runtime/Thread.h"
#include "core/text/String.h"

namespace core {

class ServerSocket;

/// The worker of one address of a ServerSocket: has its connections or datagrams handled, one after
/// the other, until its termination is requested.
class ServerSocketThread : public Thread {
public:
    /// Serves the bound socket for the address at index of server, which must outlive the worker.
    /// Without a socket the worker waits until its termination is requested.
    ServerSocketThread(ServerSocket& server, ClassRef<Socket> const& socket, int index);
    ~ServerSocketThread() override;

    char const* ClassName() const override;

    /// The place of the address in the server's table, which changes when another is removed.
    void SetIndex(int index) { index_ = index; }

    /// Waits up to ms milliseconds until clients can reach the socket.
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
    String bind_;  ///< a copy of our own: texts are not shared between threads
    std::atomic<int> index_;
    Event ready_;
};

}  // namespace core
