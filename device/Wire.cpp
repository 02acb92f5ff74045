#include "device/Wire.h"

#include <algorithm>

#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"
#include "update/protocol/UpdateNotification.h"

namespace device {

namespace {

int const slice = 50;  ///< ms between two looks at the stop flag

}  // namespace

Wire::Wire(core::Socket& socket, DeviceLimits const& limits, Observer& observer,
           std::atomic<bool> const& stop)
    : socket_(socket), limits_(limits), observer_(observer), stop_(stop) {}

int Wire::ReceiveSome(void* buffer, int length) {
    return ReceiveWithin(buffer, length, limits_.silence);
}

int Wire::ReceiveWithin(void* buffer, int length, int ms) {
    core::CountDownTimer silence(static_cast<unsigned long long>(ms));
    for (;;) {
        if (stop_) {
            why_ = Outcome::stopped;
            return 0;
        }
        if (socket_.CanRecv(std::min(ms, slice))) {
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
    for (int done = 0; done < length;) {
        int const got = ReceiveSome(bytes + done, length - done);
        if (got == 0) {
            return false;
        }
        done += got;
    }
    return true;
}

bool Wire::Notify(std::uint32_t code, std::uint32_t value) {
    update::UpdateNotification notification;
    notification.magic = update::wireMagic;
    notification.code = code;
    notification.value = value;
    update::UpdateNotification onWire = update::swapped(notification);
    onWire.crc = update::bigEndian(update::wireCrc(onWire));
    if (!Send(&onWire, update::recordSize)) {
        return false;
    }
    observer_.OnNotification(code, value);
    return true;
}

bool Wire::Send(void const* bytes, int length) {
    return socket_.Write(bytes, length) == length;
}

bool Wire::Pause(int ms) {
    for (int left = ms; left > 0; left -= slice) {
        if (stop_) {
            return false;
        }
        sys::scheduler::sleepms(std::min(left, slice));
    }
    return true;
}

void Wire::Finish() {
    socket_.ShutdownSend();
    core::CountDownTimer farewell(static_cast<unsigned long long>(limits_.farewell));
    char ignored[16384];
    while (!farewell.Expired() &&
           ReceiveWithin(ignored, static_cast<int>(sizeof ignored), limits_.farewell) > 0) {
    }
    socket_.Close();
}

void Wire::Reset() {
    socket_.Abort();
}

}  // namespace device
