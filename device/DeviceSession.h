#pragma once

#include <cstdint>
#include <optional>

#include "device/Behaviour.h"
#include "device/Observer.h"
#include "device/ReceivedUpdate.h"
#include "update/protocol/records.h"

namespace device {

/// The device's side of one update: receives and checks the records and the file, and lets the
/// behaviour reply at each step.
class DeviceSession {
public:
    /// acceptToken is the token that header and trailer must return. The references must stay
    /// valid.
    DeviceSession(DeviceConnection& connection, Behaviour& behaviour, Observer& observer,
                  ReceivedUpdate& receivedUpdate, std::uint32_t acceptToken);

    // Each runs the session to its end; call one of them, once. The connection stays open.

    /// Receives an update.
    UpdateResult Run();
    /// Receives a request, and rejects it because of another update.
    UpdateResult RunBusy();

private:
    // The steps, in order. Each returns false if the session has ended.
    bool ReceiveRequest();
    bool AcceptRequest();
    bool ReceiveHeader();
    bool ReceiveFile();
    bool ReceiveTrailer();
    bool FinishUpdate();

    /// Returns the result of the session, after its last step.
    UpdateResult Result() const;
    /// Returns the status to reject the update with, or nothing if it is a valid archive.
    std::optional<update::DeviceStatus> CheckArchive();
    /// Stores the update. Returns false on failure.
    bool Store();
    /// Reports why the update could not be written to its file.
    void ReportFileError(int error);
    /// Lets the behaviour act; newBytes is the number of bytes of the file received since the last
    /// step.
    bool RunStep(Step step, std::optional<Notification> defaultReply, std::uint32_t newBytes = 0);
    /// Runs a step whose default reply is this notification.
    bool Reply(Step step, std::uint32_t code, std::uint32_t value);
    /// Runs a step whose default reply is this error. Returns false.
    bool Reject(Step step, update::DeviceStatus status);
    /// Ends the session, after an error notification if the updater timed out. Returns false.
    bool HandleReceiveFailure(Step step);

    DeviceConnection& connection_;
    Behaviour& behaviour_;
    Observer& observer_;
    ReceivedUpdate& receivedUpdate_;
    std::uint32_t const acceptToken_;
    update::UpdateRequest request_;
    std::uint32_t bytes_ = 0;  ///< of the file received so far
    std::uint32_t crc_ = 0;    ///< CRC-32 of these bytes
    UpdateResult result_ = UpdateResult::aborted;
};

}  // namespace device
