#include "core/net/ServerSocketThread.h"

#include "core/net/ServerSocket.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const missingRetry = 5;  ///< ms between two looks at a socket that is missing or fails
int const listenRetry = 2;   ///< ms between two attempts to listen
int const waitSlice = 100;   ///< ms of waiting between two looks at the termination request
/// ms after a failure: without free descriptors or memory, accept would fail again at once.
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
    // The socket is only touched on this thread: waiting in slices ends an accept as surely as
    // closing it from outside, and no descriptor can be reused under a running call.
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
            // Whatever a handler throws, or the lack of memory for a connection, concerns that
            // connection alone. It is released by now.
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
    // The handler receives the datagram itself, from the worker's socket, and may close it or
    // release the reference to it.
    if (WaitForTraffic()) {
        server_.Handle(socket_, bind_, index_);
    }
    return true;
}

bool ServerSocketThread::WaitForTraffic() {
    int const ready = socket_ && socket_->IsOpen() ? socket_->checkRecv(waitSlice) : -1;
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
    // A client may go away between the wait and the accept, which must not wait for the next one.
    return socket_->Listen() == socket_result::success && socket_->setBlocking(false);
}

void ServerSocketThread::DeleteSocket() {
    socket_.Set(nullptr);
}

}  // namespace core
