#pragma once

#include <functional>
#include <optional>

#include "core/net/Socket.h"
#include "core/runtime/CountDownTimer.h"
#include "update/protocol/records.h"
#include "update/session/Outcome.h"

/// Bytes and records of a session, each within its timeout. Callers set the phase of a Failure.
namespace update {

/// Initialises the socket library. Returns the failure, or nothing: the caller then calls
/// core::Socket::done() when no socket is left.
[[nodiscard]] std::optional<Failure> initSockets();

/// The result of an attempt to send a number of bytes.
enum class SendResult { sent, failed, stalled, abandoned };

/// Sends all bytes through a non-blocking socket: a blocking send to a peer that stops reading
/// could exceed every timeout. Each accepted byte restarts the stall timer. While the socket is
/// full, calls mayWait every 25 ms and abandons the rest when it returns false.
[[nodiscard]] SendResult sendAll(
    core::Socket& socket, void const* data, int length, core::CountDownTimer& stall,
    std::function<bool()> const& mayWait = [] { return true; });

/// Receives the records of a strict session from a non-blocking socket. Unlike receiveResponse it
/// recognises the end of the connection and keeps a record that has arrived in part.
class RecordReader {
public:
    /// Receives and checks the next record, waiting until no byte has arrived for ms milliseconds.
    /// Returns nothing and leaves the record in host byte order, or returns the failure: noAnswer,
    /// connectionEnded, connectionReset or that of checkResponse.
    [[nodiscard]] std::optional<Failure> Receive(core::Socket& socket, UpdateNotification& record,
                                                 int ms);

private:
    char bytes_[recordSize];
    int count_ = 0;  ///< the bytes of the record that have arrived
};

/// Returns the error of a response that did not arrive in time.
[[nodiscard]] core::Fault timeoutFault();

/// Receives a record and checks it. Returns nothing and leaves the record in host byte order, or
/// returns the failure: noAnswer if the connection ended or no byte arrived for ms
/// milliseconds, otherwise that of checkResponse.
[[nodiscard]] std::optional<Failure> receiveResponse(core::Socket& socket,
                                                     UpdateNotification& response, int ms);

/// Converts a received record to host byte order, valid or not. Returns the failure if its magic or
/// CRC is wrong or if it reports an error.
[[nodiscard]] std::optional<Failure> checkResponse(UpdateNotification& response);

}  // namespace update
