#pragma once

#include <cstdint>
#include <optional>

#include "device/Behaviour.h"
#include "device/DeviceConnection.h"
#include "device/Observer.h"
#include "device/ReceivedUpdate.h"
#include "update/protocol/records.h"

namespace device {

/// One update, from the device's side: takes the records and the file, checks them, and has the
/// behaviour answer at every step.
class DeviceSession {
public:
    /// acceptToken is what the updater is to return in header and trailer.
    DeviceSession(DeviceConnection& connection, Behaviour& behaviour, Observer& observer,
                  ReceivedUpdate& received, std::uint32_t acceptToken);

    /// Runs to the end; the connection stays open.
    UpdateResult Run();

private:
    // The steps; each returns false when the session is over.
    bool ReceiveRequest();
    bool ReceiveHeader();
    bool ReceiveFile();
    bool ReceiveTrailer();
    bool FinishUpdate();

    /// What is wrong with the update as an archive; nothing when it is sound.
    std::optional<update::DeviceStatus> CheckArchive();
    bool Store();
    /// Reports why the update cannot be kept.
    void ReportFileError(int error);
    bool RunStep(Step step, std::optional<Notification> answer, std::uint32_t newBytes = 0);
    bool Reply(Step step, std::uint32_t code, std::uint32_t value);
    bool Reject(Step step, update::DeviceStatus status);
    bool HandleReceiveFailure(Step step);

    DeviceConnection& connection_;
    Behaviour& behaviour_;
    Observer& observer_;
    ReceivedUpdate& received_;
    std::uint32_t const acceptToken_;
    update::UpdateRequest request_;
    std::uint32_t bytes_ = 0;  ///< of the file that have come so far
    std::uint32_t crc_ = 0;    ///< of these bytes
    UpdateResult result_ = UpdateResult::aborted;
};

}  // namespace device
