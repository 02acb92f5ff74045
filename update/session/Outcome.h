#pragma once

#include <cstdint>
#include <optional>

#include "core/text/message.h"

namespace update {

/// The step that a session reached. docs/errors.md describes what each leaves on the device.
enum class Phase { start, connection, request, header, transfer, trailer, completion };

/// The most that the device can have received.
enum class Delivered { nothing, request, partOfFile, perhapsAll };

/// Whether to send the same update again.
enum class Retry {
    never,       ///< fails the same way until the input, the device or this computer changes
    safe,        ///< starts over: the device has not begun to install
    checkFirst,  ///< the device may be installing: wait minutes and do not switch it off
};

/// The end of a session that did not complete.
struct Failure {
    enum class Kind {
        input,       ///< the address or the file cannot be used
        system,      ///< this computer cannot communicate
        connection,  ///< the connection was not accepted
        lost,        ///< the connection broke while sending
        timeout,     ///< the device sent, or accepted, nothing in time
        protocol,    ///< the device sent an invalid or unexpected record
        rejected,    ///< the device reported an error
    };

    core::Fault fault;  ///< for users
    Kind kind = Kind::input;
    Phase phase = Phase::start;
    /// The status that the device reported, if it reported an error: a DeviceStatus, or any other
    /// number.
    std::optional<std::uint32_t> status = {};

    /// Follows from the phase.
    Delivered GetDelivered() const;
    /// Follows from phase, kind and status.
    Retry GetRetry() const;
};

/// The result of a session.
struct Outcome {
    std::optional<Failure> failure;  ///< nothing if the update is complete
    /// The RestartKind that the device reported on completion, or any other number.
    std::uint32_t restart = 0;

    bool IsComplete() const { return !failure; }
};

/// Return the name of the enumerator, for logs and scripts.
char const* nameOf(Phase phase);
char const* nameOf(Delivered delivered);
char const* nameOf(Retry retry);
char const* nameOf(Failure::Kind kind);

}  // namespace update
