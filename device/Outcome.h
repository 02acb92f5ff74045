#pragma once

namespace device {

/// How a conversation with an updater ended.
enum class Outcome {
    complete,    ///< the update was received, checked and reported complete
    refused,     ///< we sent an error notification
    ended,       ///< the updater closed or lost the connection
    silent,      ///< nothing came within the time limit
    stopped,     ///< the device was told to stop
    misbehaved,  ///< the behaviour broke the conversation off
    exhausted    ///< the device ran out of memory
};

}  // namespace device
