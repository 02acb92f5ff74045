#pragma once

#include <cstdint>
#include <optional>

#include "device/Behaviour.h"
#include "device/Inbox.h"
#include "device/Observer.h"
#include "device/Outcome.h"
#include "device/Wire.h"
#include "update/protocol/records.h"

namespace device {

/// One update, from the device's side: takes the records and the file, checks them, and has the
/// behaviour answer at every step.
class Conversation {
public:
    /// acceptToken is what the updater is to return in header and trailer.
    Conversation(Wire& wire, Behaviour& behaviour, Observer& observer, Inbox& inbox,
                 std::uint32_t acceptToken);

    /// Runs to the end; the connection stays open.
    Outcome Run();

private:
    // The steps; each returns false when the conversation is over.
    bool TakeRequest();
    bool TakeHeader();
    bool TakeFile();
    bool TakeTrailer();
    bool ReportProgress();

    /// What is wrong with the update as an archive; nothing when it is sound.
    std::optional<update::DeviceStatus> ArchiveFault();
    bool Store();
    /// Reports why the update cannot be kept.
    void ReportFileError(int error);
    bool Act(Step step, std::optional<Notification> answer, std::uint32_t newBytes = 0);
    bool Answer(Step step, std::uint32_t code, std::uint32_t value);
    bool Refuse(Step step, update::DeviceStatus status);
    bool Lost(Step step);

    Wire& wire_;
    Behaviour& behaviour_;
    Observer& observer_;
    Inbox& inbox_;
    std::uint32_t const acceptToken_;
    update::UpdateRequest request_;
    std::uint32_t bytes_ = 0;  ///< of the file that have come so far
    std::uint32_t crc_ = 0;    ///< of these bytes
    Outcome outcome_ = Outcome::misbehaved;
};

}  // namespace device
