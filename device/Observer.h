#pragma once

#include <cstdint>

#include "core/text/String.h"
#include "device/Outcome.h"
#include "update/protocol/DeviceStatus.h"
#include "update/protocol/UpdateRequest.h"
#include "update/protocol/UpdateTransferHeader.h"
#include "update/protocol/UpdateTransferTrailer.h"

namespace device {

/// Is told what happens on a connection, in order; does nothing by itself. Conversations on
/// several addresses tell the same object from several threads. Records are in host order.
class Observer {
public:
    virtual ~Observer();

    virtual void OnConnection(core::String const& peer);
    virtual void OnRequest(update::UpdateRequest const& request);
    virtual void OnHeader(update::UpdateTransferHeader const& header);
    virtual void OnData(void const* bytes, int length);
    /// The whole file is here; crc is that of the bytes that came.
    virtual void OnFile(std::uint32_t size, std::uint32_t crc);
    /// The update was read as an archive, with the result of StreamSequencerReader::Read, and holds
    /// that many files. Only where the device takes nothing but archives.
    virtual void OnArchive(int result, int files);
    virtual void OnTrailer(update::UpdateTransferTrailer const& trailer);
    /// We have sent a notification.
    virtual void OnNotification(std::uint32_t code, std::uint32_t value);
    virtual void OnEnd(Outcome outcome);
};

}  // namespace device
