#include "device/DeviceServer.h"

#include <new>

#include "device/DeviceConnection.h"
#include "device/DeviceSession.h"
#include "device/ReceivedUpdate.h"

namespace device {

DeviceServer::DeviceServer(Behaviour& behaviour, Observer& observer, DeviceTimeouts const& timeouts,
                           UpdatePolicy const& policy)
    : ServerSocket(core::SocketType::stream),
      behaviour_(behaviour),
      observer_(observer),
      timeouts_(timeouts),
      policy_(policy) {}

DeviceServer::~DeviceServer() {
    stop_ = true;
    StopListen(-1);
}

char const* DeviceServer::ClassName() const {
    return "DeviceServer";
}

void DeviceServer::HandleConnection(core::ClassRef<core::Socket>& socket, core::String const& bind,
                                    int) {
    UpdateResult result = UpdateResult::exhausted;
    try {
        result = Serve(*socket, bind);
    } catch (std::bad_alloc const&) {
        // What the session held is released by now: the device goes on with the next.
    }
    observer_.OnEnd(result);
}

UpdateResult DeviceServer::Serve(core::Socket& socket, core::String const& bind) {
    core::String peer;
    socket.GetTarget(peer);
    observer_.OnConnection(peer);
    DeviceConnection connection(socket, timeouts_, observer_, stop_);
    core::String name;
    if (socket.GetSockName(name, true) != core::socket_result::success) {
        name = bind;
    }
    // A colon, which an IPv6 address has, is no part of a file's name everywhere.
    ReceivedUpdate received(policy_, name.Replace("|", "-").Replace(":", "."));
    // The number of the update, from 1 on, serves as its token: a zeroed record never matches.
    DeviceSession session(connection, behaviour_, observer_, received, ++updates_);
    UpdateResult const result = session.Run();
    connection.CloseGracefully();
    return result;
}

}  // namespace device
