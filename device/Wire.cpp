#include "device/Wire.h"

#include <algorithm>
#include <limits>

#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"

namespace device {

using update::UpdateNotification;

namespace {

std::uint32_t const slice = 50;  ///< ms between two looks at the stop flag

}  // namespace

Wire::Wire(core::Socket& socket, DeviceLimits const& limits, Observer& observer,
           std::atomic<bool> const& stop)
    : socket_(socket),
      limits_(limits),
      observer_(observer),
      stop_(stop),
      mostAtATime_(std::numeric_limits<int>::max()) {
    // Each send goes out as it is: a record in pieces is to arrive in pieces.
    socket_.setTCPNoDelay(true);
}

int Wire::ReceiveSome(void* buffer, int length) {
    if (!Pause(pauseBetween_)) {
        return 0;
    }
    return ReceiveWithin(buffer, std::min(length, mostAtATime_), limits_.silence);
}

int Wire::ReceiveWithin(void* buffer, int length, int ms) {
    core::CountDownTimer silence(static_cast<unsigned long long>(ms));
    for (;;) {
        if (stop_) {
            why_ = Outcome::stopped;
            return 0;
        }
        if (socket_.CanRecv(std::min(ms, static_cast<int>(slice)))) {
            why_ = Outcome::ended;
            return std::max(socket_.Recv(buffer, length), 0);
        }
        if (silence.Expired()) {
            why_ = Outcome::silent;
            return 0;
        }
    }
}

bool Wire::ReceiveAll(void* buffer, int length) {
    auto* const bytes = static_cast<char*>(buffer);
    int done = 0;
    while (done < length) {
        int const got = ReceiveSome(bytes + done, length - done);
        if (got == 0) {
            break;
        }
        done += got;
    }
    if (done > 0) {
        observer_.OnReceived(buffer, done);
    }
    return done == length;
}

void Wire::Drain() {
    char ignored[update::chunkSize];
    while (ReceiveWithin(ignored, static_cast<int>(sizeof ignored),
                         std::numeric_limits<int>::max()) > 0) {
    }
}

void Wire::SlowDown(int bytes, std::uint32_t ms) {
    mostAtATime_ = bytes;
    pauseBetween_ = ms;
}

void Wire::LimitReceiveBuffer(std::uint32_t bytes) {
    socket_.setReceiveBuffer(static_cast<int>(bytes));
}

UpdateNotification Wire::Encode(Notification const& notification, std::uint32_t magic,
                                std::uint32_t crcFault) {
    UpdateNotification onWire =
        update::swapped(UpdateNotification{magic, notification.code, notification.value});
    onWire.crc = update::bigEndian(update::wireCrc(onWire) ^ crcFault);
    return onWire;
}

bool Wire::Notify(Notification const& notification) {
    UpdateNotification const onWire = Encode(notification);
    if (!Send(&onWire, update::recordSize)) {
        return false;
    }
    Said(notification);
    return true;
}

void Wire::Said(Notification const& notification) {
    refused_ = refused_ || notification.code == UpdateNotification::Error ||
               notification.code == UpdateNotification::ErrorAlt;
    observer_.OnNotification(notification.code, notification.value);
}

bool Wire::Send(void const* bytes, int length) {
    auto const* const rest = static_cast<char const*>(bytes);
    core::CountDownTimer silence(static_cast<unsigned long long>(limits_.silence));
    for (int done = 0; done < length;) {
        int const taken = socket_._Write(rest + done, length - done, static_cast<int>(slice));
        if (taken < 0) {
            return Break(Outcome::ended);
        }
        done += taken;
        if (done < length && stop_) {
            return Break(Outcome::stopped);
        }
        if (done < length && silence.Expired()) {
            return Break(Outcome::silent);
        }
    }
    observer_.OnSent(bytes, length);
    return true;
}

bool Wire::Pause(std::uint32_t ms) {
    for (std::uint32_t left = ms; left > 0; left -= std::min(left, slice)) {
        if (stop_) {
            return Break(Outcome::stopped);
        }
        sys::scheduler::sleepms(static_cast<int>(std::min(left, slice)));
    }
    return true;
}

bool Wire::Break(Outcome why) {
    broken_ = true;
    why_ = why;
    return false;
}

void Wire::Finish() {
    socket_.ShutdownSend();
    core::CountDownTimer farewell(static_cast<unsigned long long>(limits_.farewell));
    char ignored[update::chunkSize];
    while (!farewell.Expired() &&
           ReceiveWithin(ignored, static_cast<int>(sizeof ignored), limits_.farewell) > 0) {
    }
    socket_.Close();
}

void Wire::Reset() {
    socket_.Abort();
}

}  // namespace device
