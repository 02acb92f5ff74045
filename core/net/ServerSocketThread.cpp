#include "core/net/ServerSocketThread.h"

#include "core/net/ServerSocket.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const missingRetry = 5;    ///< ms between two checks of a missing or failing socket
int const listenRetry = 2;     ///< ms between two attempts to listen
int const pollInterval = 100;  ///< ms between two checks for a termination request
/// ms to wait after a failure: without descriptors or memory, accept would fail again at once.
int const backOff = 50;

}  // namespace

ServerSocketThread::ServerSocketThread(ServerSocket& server, ClassRef<Socket> const& socket,
                                       int index)
    : Thread(String::format("serve %1").argi(1, index)),
      server_(server),
      socket_(socket),
      bind_(server.GetBind(index)),
      index_(index) {
    bind_.Unique();
}

ServerSocketThread::~ServerSocketThread() {
    RequestTermination();
    Join();
}

char const* ServerSocketThread::ClassName() const {
    return "ServerSocketThread";
}

void ServerSocketThread::Execute() {
    // Only this thread uses the socket and polls for termination: closing it from another thread
    // would not end a blocked accept everywhere, and the descriptor might be reused meanwhile.
    while (!socket_ && !IsTerminationRequested()) {
        sys::scheduler::sleepms(missingRetry);
    }
    if (!socket_) {
        return;
    }
    if (socket_->GetType() == SocketType::stream) {
        ExecuteStream();
    } else if (socket_->GetType() == SocketType::datagram) {
        ExecuteDatagram();
    }
    DeleteSocket();
}

void ServerSocketThread::ExecuteStream() {
    if (!ListenUntilTermination()) {
        return;
    }
    ready_.Signal();
    ServeUntilTermination(&ServerSocketThread::ServeConnection);
}

void ServerSocketThread::ExecuteDatagram() {
    ready_.Signal();
    ServeUntilTermination(&ServerSocketThread::ServeDatagram);
}

void ServerSocketThread::ServeUntilTermination(bool (ServerSocketThread::*serve)()) {
    while (!IsTerminationRequested()) {
        bool served = false;
        try {
            served = (this->*serve)();
        } catch (...) {
            // An exception of a handler, or no memory for a connection, affects that connection
            // only, which is already released.
        }
        if (!served) {
            sys::scheduler::sleepms(backOff);
        }
    }
}

bool ServerSocketThread::ServeConnection() {
    if (!WaitForTraffic()) {
        return true;
    }
    ClassRef<Socket> accepted;
    if (socket_->Accept(accepted) != socket_result::success) {
        return false;
    }
    server_.Handle(accepted, bind_, index_);
    return true;
}

bool ServerSocketThread::ServeDatagram() {
    // The handler receives the datagram from the worker's socket, and may close the socket or
    // release the reference.
    if (WaitForTraffic()) {
        server_.Handle(socket_, bind_, index_);
    }
    return true;
}

bool ServerSocketThread::WaitForTraffic() {
    int const ready = socket_ && socket_->IsOpen() ? socket_->checkRecv(pollInterval) : -1;
    if (ready < 0) {
        sys::scheduler::sleepms(missingRetry);
    }
    return ready > 0;
}

bool ServerSocketThread::ListenUntilTermination() {
    while (!IsTerminationRequested()) {
        if (Listen()) {
            return true;
        }
        sys::scheduler::sleepms(listenRetry);
    }
    return false;
}

bool ServerSocketThread::Listen() {
    // If a client disconnects between the wait and the accept, a blocking accept would wait for the
    // next client.
    return socket_->Listen() == socket_result::success && socket_->setBlocking(false);
}

void ServerSocketThread::DeleteSocket() {
    socket_.Set(nullptr);
}

}  // namespace core
