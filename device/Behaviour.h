#pragma once

#include <cstdint>
#include <optional>

#include "device/DeviceConnection.h"
#include "device/Notification.h"

namespace device {

/// The points of a session at which a device can do something of its own.
enum class Step {
    connect,     ///< the connection is open, nothing has come yet
    request,     ///< the request is here
    header,      ///< the transfer header is here
    data,        ///< a piece of the file is here
    trailer,     ///< the trailer is here
    checked,     ///< the file's CRC has been compared
    processing,  ///< the file is being worked on
    complete,    ///< the update is done
};

struct StepContext {
    Step step;
    std::uint32_t token;          ///< what the updater must return in header and trailer
    std::uint32_t bytesBefore;    ///< bytes of the file received before this step
    std::uint32_t bytesReceived;  ///< bytes of the file received by now
    /// The notification that a conforming device sends now, if any.
    std::optional<Notification> defaultReply;
};

/// What the device does at each step. This one is an honest device; derived ones misbehave.
/// Sessions on several addresses ask the same object from several threads.
class Behaviour {
public:
    virtual ~Behaviour();

    /// Acts on the connection; false breaks the session off.
    virtual bool OnStep(StepContext const& context, DeviceConnection& connection);
};

}  // namespace device
