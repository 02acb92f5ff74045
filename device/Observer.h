#pragma once

#include <cstdint>

#include "core/text/String.h"
#include "device/Outcome.h"
#include "update/protocol/records.h"

namespace device {

/// Is told what happens on a connection, in order; does nothing by itself. Conversations on
/// several addresses tell the same object from several threads. Records are in host order.
class Observer {
public:
    virtual ~Observer();

    virtual void OnConnection(core::String const& peer);
    /// The bytes of a record, or of its beginning when no more came, as they travelled; what they
    /// mean is told behind this.
    virtual void OnReceived(void const* bytes, int length);
    /// We have sent bytes: what they mean is told behind this, if anything.
    virtual void OnSent(void const* bytes, int length);
    virtual void OnRequest(update::UpdateRequest const& request);
    virtual void OnHeader(update::UpdateTransferHeader const& header);
    virtual void OnData(void const* bytes, int length);
    /// The whole file is here; crc is that of the bytes that came.
    virtual void OnFile(std::uint32_t size, std::uint32_t crc);
    /// The update was read as an archive, with the result of StreamSequencerReader::Read, and holds
    /// that many files. Only where the device takes nothing but archives.
    virtual void OnArchive(int result, int files);
    /// The update could not be read as an archive: its file, which is at path, failed with a
    /// negative errno value. Comes in the place of OnArchive.
    virtual void OnNotChecked(int error, core::String const& path);
    /// The update was stored at path, or could not be, with a negative errno value. Only where the
    /// device stores updates.
    virtual void OnStored(int result, core::String const& path);
    virtual void OnTrailer(update::UpdateTransferTrailer const& trailer);
    /// We have sent a notification.
    virtual void OnNotification(std::uint32_t code, std::uint32_t value);
    virtual void OnEnd(Outcome outcome);
};

}  // namespace device
