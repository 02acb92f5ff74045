#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "core/text/String.h"
#include "update/protocol/records.h"

namespace device {

/// How a session with an updater ended.
enum class UpdateResult {
    complete,   ///< the update was received, checked and reported complete
    rejected,   ///< the device sent an error notification
    ended,      ///< the updater closed or lost the connection
    timedOut,   ///< the updater sent, or accepted, no data within the timeout
    stopped,    ///< the device was stopped
    aborted,    ///< the behaviour ended the session
    exhausted,  ///< the device ran out of memory
};

/// The check of an update as an archive.
struct ArchiveCheck {
    int result;         ///< of StreamSequencerReader::Check
    int files;          ///< number of files
    int misplacedFile;  ///< the first file with a wrong offset, or -1
    /// The target ID of an archive for another device.
    std::optional<core::String> otherTarget;
};

/// Receives the events of the updates of a device, which follow each other; by default ignores
/// them. Each session calls it from a thread of its own. Records are in host byte order.
class Observer {
public:
    virtual ~Observer() = default;

    /// Returns the observer of a session that is rejected while an update is in progress; number
    /// counts these sessions, from 1. Its events are concurrent with those of this object.
    virtual std::unique_ptr<Observer> CreateBusyObserver(std::uint32_t /*number*/) {
        return std::make_unique<Observer>();
    }
    /// A connection from peer, "IP|Port", was accepted.
    virtual void OnConnection(core::String const& /*peer*/) {}
    /// The bytes of a record in wire order, or those received of an incomplete one. Called before
    /// the event of the record.
    virtual void OnReceived(void const* /*bytes*/, int /*length*/) {}
    /// The device has sent bytes. Called before OnNotification, if they contain a notification.
    virtual void OnSent(void const* /*bytes*/, int /*length*/) {}
    /// A record was received, valid or not; the same for header and trailer.
    virtual void OnRequest(update::UpdateRequest const& /*request*/) {}
    virtual void OnHeader(update::UpdateTransferHeader const& /*header*/) {}
    /// A chunk of the file was received.
    virtual void OnData(void const* /*bytes*/, int /*length*/) {}
    /// The whole file was received; crc is the CRC-32 of the received bytes.
    virtual void OnFile(std::uint32_t /*size*/, std::uint32_t /*crc*/) {}
    /// The update was read as an archive. Only if the device accepts only archives.
    virtual void OnArchive(ArchiveCheck const& /*check*/) {}
    /// The update could not be checked: its file at path failed with error, a negative errno value.
    /// Replaces OnArchive.
    virtual void OnNotChecked(int /*error*/, core::String const& /*path*/) {}
    /// The update was stored at path (result 0), or could not be (a negative errno value). Only if
    /// the device stores updates.
    virtual void OnStored(int /*result*/, core::String const& /*path*/) {}
    virtual void OnTrailer(update::UpdateTransferTrailer const& /*trailer*/) {}
    /// The device has sent a valid notification.
    virtual void OnNotification(std::uint32_t /*code*/, std::uint32_t /*value*/) {}
    /// The session has ended. The last event of a connection.
    virtual void OnEnd(UpdateResult /*result*/) {}
};

}  // namespace device
