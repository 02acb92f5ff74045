#pragma once

#include <cstdint>
#include <optional>

#include "device/Notification.h"
#include "device/Wire.h"

namespace device {

/// The points of a conversation at which a device can do something of its own.
enum class Step {
    Connect,     ///< the connection is open, nothing has come yet
    Request,     ///< the request is here
    Header,      ///< the transfer header is here
    Data,        ///< a piece of the file is here
    Trailer,     ///< the trailer is here
    Checked,     ///< the file's CRC has been compared
    Processing,  ///< the file is being worked on
    Complete,    ///< the update is done
};

struct Moment {
    Step step;
    std::uint32_t token;   ///< what the updater is to return in header and trailer
    std::uint32_t before;  ///< bytes of the file that had come before this step
    std::uint32_t bytes;   ///< and that have come by now
    /// What an honest device says now, if anything.
    std::optional<Notification> answer;
};

/// What the device does at each step. This one is an honest device; derived ones misbehave.
/// Conversations on several addresses ask the same object from several threads.
class Behaviour {
public:
    virtual ~Behaviour();

    /// Acts on the connection; false breaks the conversation off.
    virtual bool Act(Moment const& moment, Wire& wire);
};

}  // namespace device
