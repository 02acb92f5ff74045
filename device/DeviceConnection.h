#pragma once

#include <atomic>
#include <cstdint>

#include "core/net/Socket.h"
#include "core/object/ClassRef.h"
#include "device/DeviceTimeouts.h"
#include "device/Notification.h"
#include "device/Observer.h"
#include "update/protocol/records.h"

namespace device {

/// The device's end of one connection.
class DeviceConnection {
public:
    /// Works on socket until stop is set; the records in both directions, and all else that it
    /// sends, are told to observer. All must outlive it.
    DeviceConnection(core::Socket& socket, DeviceTimeouts const& timeouts, Observer& observer,
                     std::atomic<bool> const& stop);

    /// Receives at least 1 and at most length bytes; their number. 0 when none came: StopReason
    /// says whether the updater ended the connection, was silent, or the device was told to stop.
    int ReceiveSome(void* buffer, int length);
    /// Receives a whole record, in host order; false when less came, see StopReason.
    template <class Record>
    bool ReceiveRecord(Record& record) {
        if (!ReceiveAll(&record, update::recordSize)) {
            return false;
        }
        record = update::swapped(record);
        return true;
    }
    UpdateResult StopReason() const { return stopReason_; }
    /// Whether a pause or a send failed, for which StopReason says the reason as well.
    bool IsBroken() const { return broken_; }
    /// Receives and drops what comes until the updater ends the connection, whenever that is, or
    /// the device is told to stop.
    void Drain();

    /// From now on receives at most bytes at a time, and then waits for ms milliseconds.
    void SlowDown(int bytes, std::uint32_t ms);
    /// Sets the approximate receive buffer size.
    void LimitReceiveBuffer(std::uint32_t bytes);

    /// The notification as it travels. A magic of its own gets a CRC that is right for it, but for
    /// the bits of crcFault, which are turned.
    static update::UpdateNotification Encode(Notification const& notification,
                                             std::uint32_t magic = update::wireMagic,
                                             std::uint32_t crcFault = 0);
    /// Sends a sound notification; false when the updater is gone or takes nothing for as long as
    /// the limit of silence.
    bool Notify(Notification const& notification);
    /// Sends bytes as they are; false likewise.
    bool Send(void const* bytes, int length);
    /// Takes note of a sound notification that was among sent bytes.
    void RecordNotification(Notification const& notification);
    /// Whether an error was among the notifications.
    bool HasSentError() const { return hasSentError_; }
    /// Does nothing for ms milliseconds; false when the device is told to stop meanwhile.
    bool Pause(std::uint32_t ms);

    /// Ends our side, takes what the updater still sends until it ends its own, and closes: a
    /// connection closed with bytes unread would be reset, and our last record might be lost.
    void CloseGracefully();
    /// Closes at once with a reset.
    void Reset();

private:
    bool ReceiveAll(void* buffer, int length);
    int ReceiveWithin(void* buffer, int length, int ms);
    bool Fail(UpdateResult reason);

    core::Socket& socket_;
    DeviceTimeouts const& timeouts_;
    Observer& observer_;
    std::atomic<bool> const& stop_;
    UpdateResult stopReason_ = UpdateResult::ended;
    bool broken_ = false;
    bool hasSentError_ = false;
    int maxReceiveSize_;
    std::uint32_t receiveDelay_ = 0;  ///< ms
};

}  // namespace device
