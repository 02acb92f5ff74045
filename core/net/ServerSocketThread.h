#pragma once

#include "core/net/Socket.h"
#include "core/object/ClassRef.h"
#include "core/runtime/Thread.h"
#include "core/text/String.h"

namespace core {

class ServerSocket;

/// The worker of one address of a ServerSocket: accepts connections and has them handled, one
/// after the other, until its termination is requested.
class ServerSocketThread : public Thread {
public:
    /// Serves the bound socket for server, which must outlive the worker.
    ServerSocketThread(ServerSocket& server, ClassRef<Socket> const& socket, String const& bind,
                       int index);
    ~ServerSocketThread() override;

    char const* ClassName() const override;

protected:
    void Execute() override;

private:
    void ExecuteStream();
    bool ListenUntilTermination();
    void DeleteSocket();

    ServerSocket& server_;
    ClassRef<Socket> socket_;
    String bind_;  ///< a copy of our own: texts are not shared between threads
    int index_;
};

}  // namespace core
