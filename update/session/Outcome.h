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

/// The reason why a session did not complete, by the names that scripts use.
enum class Cause {
    noSockets,       ///< the socket library cannot be used
    badAddress,      ///< not an IPv4 address and port
    fileMissing,     ///< not a readable regular file
    fileUnreadable,  ///< opening or reading the file failed
    fileEmpty,       ///< strict sessions only
    fileTooBig,
    fileChanged,  ///< since it was measured; strict sessions only
    connectRefused,
    connectTimeout,
    unreachable,      ///< no route to the device
    connectFailed,    ///< for any other reason
    noAnswer,         ///< no record in time
    connectionEnded,  ///< the device closed the connection; strict sessions only
    connectionReset,  ///< the device reset the connection; strict sessions only
    sendFailed,
    stalled,            ///< the device accepted no data in time
    timeUp,             ///< the deadline passed before the trailer; strict sessions only
    notTheProtocol,     ///< the magic of a record is wrong
    damagedRecord,      ///< the CRC of a record is wrong
    unexpectedRecord,   ///< a valid record that the step does not allow
    deviceError,        ///< the device reported an error
    completionTimeout,  ///< the device did not report the end in time
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

    Failure(core::Fault const& error, Cause reason, Phase reached = Phase::start,
            std::optional<std::uint32_t> reported = {});

    core::Fault fault;  ///< for users
    Cause cause;
    Kind kind;  ///< follows from the cause
    Phase phase;
    /// The status that the device reported, if it reported an error: a DeviceStatus, or any other
    /// number.
    std::optional<std::uint32_t> status;

    /// Follows from the phase.
    Delivered GetDelivered() const;
    /// Follows from phase, cause and status.
    Retry GetRetry() const;
};

/// The result of a session.
struct Outcome {
    std::optional<Failure> failure;  ///< nothing if the update is complete
    int sent = 0;                    ///< bytes of the file that were sent, in whole chunks
    /// The RestartKind that the device reported on completion, or any other number.
    std::uint32_t restart = 0;

    bool IsComplete() const { return !failure; }
};

/// Return the name of the enumerator, for logs and scripts.
char const* nameOf(Phase phase);
char const* nameOf(Delivered delivered);
char const* nameOf(Retry retry);
char const* nameOf(Failure::Kind kind);
char const* nameOf(Cause cause);

}  // namespace update
