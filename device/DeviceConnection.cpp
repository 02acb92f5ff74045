#include "device/DeviceConnection.h"

#include <algorithm>
#include <limits>

#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"

namespace device {

using update::UpdateNotification;

namespace {

std::uint32_t const pollInterval = 50;  ///< ms between two checks of the stop flag

}  // namespace

DeviceConnection::DeviceConnection(core::Socket& socket, DeviceTimeouts const& timeouts,
                                   Observer& observer, std::atomic<bool> const& stop)
    : socket_(socket),
      timeouts_(timeouts),
      observer_(observer),
      stop_(stop),
      maxReceiveSize_(std::numeric_limits<int>::max()) {
    // Send at once: the parts of a record that is sent in parts must arrive separately.
    socket_.setTCPNoDelay(true);
}

int DeviceConnection::ReceiveSome(void* buffer, int length) {
    if (!Pause(receiveDelay_)) {
        return 0;
    }
    return ReceiveWithin(buffer, std::min(length, maxReceiveSize_), timeouts_.idle);
}

int DeviceConnection::ReceiveWithin(void* buffer, int length, int ms) {
    core::CountDownTimer idle(static_cast<unsigned long long>(ms));
    for (;;) {
        if (stop_) {
            stopReason_ = UpdateResult::stopped;
            return 0;
        }
        if (socket_.CanRecv(std::min(ms, static_cast<int>(pollInterval)))) {
            stopReason_ = UpdateResult::ended;
            return std::max(socket_.Recv(buffer, length), 0);
        }
        if (idle.Expired()) {
            stopReason_ = UpdateResult::timedOut;
            return 0;
        }
    }
}

bool DeviceConnection::ReceiveAll(void* buffer, int length) {
    auto* const bytes = static_cast<char*>(buffer);
    int done = 0;
    while (done < length) {
        int const received = ReceiveSome(bytes + done, length - done);
        if (received == 0) {
            break;
        }
        done += received;
    }
    if (done > 0) {
        observer_.OnReceived(buffer, done);
    }
    return done == length;
}

void DeviceConnection::Drain() {
    char ignored[update::chunkSize];
    while (ReceiveWithin(ignored, static_cast<int>(sizeof ignored),
                         std::numeric_limits<int>::max()) > 0) {
    }
}

void DeviceConnection::SlowDown(int bytes, std::uint32_t ms) {
    maxReceiveSize_ = bytes;
    receiveDelay_ = ms;
}

void DeviceConnection::LimitReceiveBuffer(std::uint32_t bytes) {
    socket_.setReceiveBuffer(static_cast<int>(bytes));
}

UpdateNotification DeviceConnection::Encode(Notification const& notification, std::uint32_t magic,
                                            std::uint32_t crcFault) {
    UpdateNotification onWire =
        update::swapped(UpdateNotification{magic, notification.code, notification.value});
    onWire.crc = update::bigEndian(update::wireCrc(onWire) ^ crcFault);
    return onWire;
}

bool DeviceConnection::Notify(Notification const& notification) {
    UpdateNotification const onWire = Encode(notification);
    if (!Send(&onWire, update::recordSize)) {
        return false;
    }
    RecordNotification(notification);
    return true;
}

void DeviceConnection::RecordNotification(Notification const& notification) {
    hasSentError_ = hasSentError_ || update::isError(notification.code);
    observer_.OnNotification(notification.code, notification.value);
}

bool DeviceConnection::Send(void const* bytes, int length) {
    auto const* const data = static_cast<char const*>(bytes);
    core::CountDownTimer idle(static_cast<unsigned long long>(timeouts_.idle));
    for (int done = 0; done < length;) {
        int const sent = socket_._Write(data + done, length - done, static_cast<int>(pollInterval));
        if (sent < 0) {
            return Fail(UpdateResult::ended);
        }
        done += sent;
        if (done < length && stop_) {
            return Fail(UpdateResult::stopped);
        }
        if (done < length && idle.Expired()) {
            return Fail(UpdateResult::timedOut);
        }
    }
    observer_.OnSent(bytes, length);
    return true;
}

bool DeviceConnection::Pause(std::uint32_t ms) {
    for (std::uint32_t left = ms; left > 0; left -= std::min(left, pollInterval)) {
        if (stop_) {
            return Fail(UpdateResult::stopped);
        }
        sys::scheduler::sleepms(static_cast<int>(std::min(left, pollInterval)));
    }
    return true;
}

bool DeviceConnection::Fail(UpdateResult reason) {
    broken_ = true;
    stopReason_ = reason;
    return false;
}

void DeviceConnection::CloseGracefully() {
    socket_.ShutdownSend();
    core::CountDownTimer closing(static_cast<unsigned long long>(timeouts_.close));
    char ignored[update::chunkSize];
    while (!closing.Expired() &&
           ReceiveWithin(ignored, static_cast<int>(sizeof ignored), timeouts_.close) > 0) {
    }
    socket_.Close();
}

void DeviceConnection::Reset() {
    socket_.Abort();
}

}  // namespace device
