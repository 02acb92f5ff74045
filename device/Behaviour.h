#pragma once

#include <cstdint>
#include <optional>

#include "device/DeviceConnection.h"

namespace device {

/// The points of a session at which a device can act.
enum class Step {
    connect,     ///< the connection is open, no data is received yet
    request,     ///< the request is received
    header,      ///< the transfer header is received
    data,        ///< a chunk of the file is received
    trailer,     ///< the trailer is received
    checked,     ///< the CRC of the file is compared
    processing,  ///< the file is being processed
    complete,    ///< the update is complete
    busy,        ///< the request is received while another update is in progress
};

/// The state of a session at a step.
struct StepContext {
    Step step;
    std::uint32_t token;          ///< the token that header and trailer must return
    std::uint32_t bytesBefore;    ///< bytes of the file received before this step
    std::uint32_t bytesReceived;  ///< bytes of the file received by now
    /// The notification that a conforming device sends now, if any.
    std::optional<Notification> defaultReply;
};

/// Decides what a device does at each step. This class is a conforming device; derived classes
/// deviate from it. Sessions call the same object from several threads.
class Behaviour {
public:
    virtual ~Behaviour() = default;

    /// Acts on the connection. Returns false to end the session.
    virtual bool OnStep(StepContext const& context, DeviceConnection& connection) {
        return !context.defaultReply || connection.Notify(*context.defaultReply);
    }
};

}  // namespace device
