#pragma once

#include <atomic>
#include <cstdint>

#include "core/net/Socket.h"
#include "device/Observer.h"
#include "update/protocol/records.h"

namespace device {

/// The timeouts of a device, in milliseconds.
struct DeviceTimeouts {
    /// For a record, and for the next bytes of the file. The updater reads its whole file once
    /// before it sends its request, which needs time on a slow disk.
    int idle = 60'000;
    /// For the updater to close its side after the device has shut down sending.
    int close = 2'000;
    /// For the update in progress to end before the device rejects another updater as busy. The
    /// same updater may connect again before the device has seen the end of its last session.
    int busy = 1'000;
};

/// The content of a valid notification.
struct Notification {
    std::uint32_t code;
    std::uint32_t value;
};

/// The device's end of one connection. Receiving and sending fail when the updater disconnects, the
/// idle timeout expires or the device is stopped: StopReason then returns which.
class DeviceConnection {
public:
    /// Works on socket until stop is set, and reports received records and sent bytes to observer.
    /// All arguments must outlive the connection.
    DeviceConnection(core::Socket& socket, DeviceTimeouts const& timeouts, Observer& observer,
                     std::atomic<bool> const& stop);

    /// Receives at least 1 and at most length bytes. Returns their number, or 0 on failure.
    int ReceiveSome(void* buffer, int length);
    /// Receives a whole record and converts it to host byte order. Returns false on failure.
    template <class Record>
    bool ReceiveRecord(Record& record) {
        if (!ReceiveAll(&record, update::recordSize)) {
            return false;
        }
        record = update::swapped(record);
        return true;
    }
    /// The reason of the last failure: ended, timedOut or stopped.
    UpdateResult StopReason() const { return stopReason_; }
    /// Whether a pause or a send has failed; StopReason returns why.
    bool IsBroken() const { return broken_; }
    /// Receives and discards data, without a timeout, until the updater disconnects or the device
    /// is stopped.
    void Drain();

    /// Waits ms milliseconds before each later receive, and then receives at most bytes.
    void SlowDown(int bytes, std::uint32_t ms);
    /// Sets the approximate receive buffer size.
    void LimitReceiveBuffer(std::uint32_t bytes);

    /// Returns the notification as a record in wire order. Its CRC matches its magic, except for
    /// the bits of crcFault, which are flipped.
    static update::UpdateNotification Encode(Notification const& notification,
                                             std::uint32_t magic = update::wireMagic,
                                             std::uint32_t crcFault = 0);
    /// Sends a valid notification. Returns false on failure.
    bool Notify(Notification const& notification);
    /// Sends bytes unchanged. Returns false on failure.
    bool Send(void const* bytes, int length);
    /// Records that a valid notification was sent, as a part of sent bytes.
    void RecordNotification(Notification const& notification);
    /// Whether an error notification was sent.
    bool HasSentError() const { return hasSentError_; }
    /// Waits ms milliseconds. Returns false if the device is stopped meanwhile.
    bool Pause(std::uint32_t ms);

    /// Shuts down sending, reads until the updater closes, then closes: closing with unread bytes
    /// would reset the connection and could lose the last record.
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
