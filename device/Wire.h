#pragma once

#include <atomic>
#include <cstdint>

#include "core/net/Socket.h"
#include "core/object/ClassRef.h"
#include "device/DeviceLimits.h"
#include "device/Observer.h"
#include "device/Outcome.h"
#include "update/protocol/wire.h"

namespace device {

/// The device's end of one connection.
class Wire {
public:
    /// Works on socket until stop is set; what it sends is told to observer. All must outlive it.
    Wire(core::Socket& socket, DeviceLimits const& limits, Observer& observer,
         std::atomic<bool> const& stop);

    /// Receives at least 1 and at most length bytes; their number. 0 when none came: Why says
    /// whether the updater ended the connection, was silent, or the device was told to stop.
    int ReceiveSome(void* buffer, int length);
    /// Receives a whole record, in host order; false when less came, see Why.
    template <class Record>
    bool ReceiveRecord(Record& record) {
        if (!ReceiveAll(&record, update::recordSize)) {
            return false;
        }
        record = update::swapped(record);
        return true;
    }
    Outcome Why() const { return why_; }

    /// Sends a notification with the right magic and CRC; false when the updater is gone.
    bool Notify(std::uint32_t code, std::uint32_t value);
    /// Sends bytes as they are.
    bool Send(void const* bytes, int length);
    /// Does nothing for ms milliseconds; false when the device is told to stop meanwhile.
    bool Pause(int ms);

    /// Ends our side, takes what the updater still sends until it ends its own, and closes: a
    /// connection closed with bytes unread would be reset, and our last record might be lost.
    void Finish();
    /// Closes at once with a reset.
    void Reset();

private:
    bool ReceiveAll(void* buffer, int length);
    int ReceiveWithin(void* buffer, int length, int ms);

    core::Socket& socket_;
    DeviceLimits const& limits_;
    Observer& observer_;
    std::atomic<bool> const& stop_;
    Outcome why_ = Outcome::ended;
};

}  // namespace device
