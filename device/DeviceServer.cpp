#include "device/DeviceServer.h"

#include <new>

#include "device/DeviceSession.h"

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
        // The memory of the session is released: continue with the next one.
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
    // Colons, as in IPv6 addresses, are not portable in file names.
    ReceivedUpdate receivedUpdate(policy_, name.Replace("|", "-").Replace(":", "."));
    // The token is the number of the update, from 1, so that a zeroed record never matches.
    DeviceSession session(connection, behaviour_, observer_, receivedUpdate, ++updates_);
    UpdateResult const result = session.Run();
    connection.CloseGracefully();
    return result;
}

}  // namespace device
