#include "device/DeviceServer.h"

#include <new>

#include "device/Conversation.h"
#include "device/Inbox.h"
#include "device/Wire.h"

namespace device {

DeviceServer::DeviceServer(Behaviour& behaviour, Observer& observer, DeviceLimits const& limits,
                           Intake const& intake)
    : ServerSocket(core::SocketType::stream),
      behaviour_(behaviour),
      observer_(observer),
      limits_(limits),
      intake_(intake) {}

DeviceServer::~DeviceServer() {
    stop_ = true;
    StopListen(-1);
}

char const* DeviceServer::ClassName() const {
    return "DeviceServer";
}

void DeviceServer::HandleConnection(core::ClassRef<core::Socket>& socket, core::String const& bind,
                                    int) {
    Outcome outcome = Outcome::exhausted;
    try {
        outcome = Serve(*socket, bind);
    } catch (std::bad_alloc const&) {
        // What the conversation held is released by now: the device goes on with the next.
    }
    observer_.OnEnd(outcome);
}

Outcome DeviceServer::Serve(core::Socket& socket, core::String const& bind) {
    core::String peer;
    socket.GetTarget(peer);
    observer_.OnConnection(peer);
    Wire wire(socket, limits_, observer_, stop_);
    core::String name;
    if (socket.GetSockName(name, true) != core::socket_result::success) {
        name = bind;
    }
    // A colon, which an IPv6 address has, is no part of a file's name everywhere.
    Inbox inbox(intake_, name.Replace("|", "-").Replace(":", "."));
    // The number of the update, from 1 on, serves as its token: a zeroed record never matches.
    Conversation conversation(wire, behaviour_, observer_, inbox, ++updates_);
    Outcome const outcome = conversation.Run();
    wire.Finish();
    return outcome;
}

}  // namespace device
