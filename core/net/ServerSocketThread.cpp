#include "core/net/ServerSocketThread.h"

#include "core/net/ServerSocket.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const listenRetry = 2;     ///< ms between two attempts to listen
int const waitSlice = 100;     ///< ms of waiting between two looks at the termination request
int const acceptBackOff = 50;  ///< ms after a failed accept: without free descriptors it would spin

}  // namespace

ServerSocketThread::ServerSocketThread(ServerSocket& server, ClassRef<Socket> const& socket,
                                       String const& bind, int index)
    : Thread(String::format("serve %1").argi(1, index)),
      server_(server),
      socket_(socket),
      bind_(bind),
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
    while (!IsTerminationRequested()) {
        if (!socket_->CanRecv(waitSlice)) {
            continue;
        }
        ClassRef<Socket> accepted;
        if (socket_->Accept(accepted) == socket_result::success) {
            server_.DoAccept(accepted, bind_, index_);
        } else {
            sys::scheduler::sleepms(acceptBackOff);
        }
    }
}

void ServerSocketThread::ExecuteDatagram() {
    ready_.Signal();
    // The handler receives the datagram itself, from our own socket.
    while (!IsTerminationRequested()) {
        if (socket_->CanRecv(waitSlice)) {
            server_.DoAccept(socket_, bind_, index_);
        }
    }
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
