#include <algorithm>
#include <cerrno>

#include "core/net/Socket.h"
#include "core/runtime/CountDownTimer.h"
#include "sys/scheduler.h"

namespace core {

namespace platform = sys::platform;

namespace {

int const receivePollInterval = 10;  ///< ms between two checks of the timer in RecvUntil
int const transferPollInterval = 5;  ///< ms between two checks of the timer in Read and Write

/// Calls move(done) each time check(ms) returns ready, until all bytes are moved or the timeout
/// expires. Returns the number of bytes moved, or the negative result of the first attempt.
template <class Check, class Move>
int transferUntil(int length, int timeoutMs, Check check, Move move) {
    int const timeout = std::max(timeoutMs, 0);
    int const interval = std::min(timeout, transferPollInterval);
    CountDownTimer timer(static_cast<unsigned long long>(timeout));
    for (int done = 0; done < length;) {
        int const ready = check(interval);
        int const moved = ready > 0 ? move(done) : ready;
        if (moved < 0) {
            return done != 0 ? done : moved;
        }
        done += moved;
        if (ready > 0 && moved == 0) {
            // Do not spin: a stream at its end is always ready.
            sys::scheduler::sleepms(transferPollInterval);
        }
        if (timer.Expired()) {
            return done;
        }
    }
    return std::max(length, 0);
}

}  // namespace

int Socket::Send(void const* data, int length) {
    return Remember(platform::sendBytes(handle_, data, length));
}

int Socket::Send(Buffer const& bytes) {
    return bytes.IsEmpty() ? 0 : Send(bytes.GetData(), bytes.GetSize());
}

int Socket::Send(String const& text) {
    return Send(text.getCString(), text.GetLength());
}

int Socket::Recv(void* buffer, int length) {
    return Remember(platform::receiveBytes(handle_, buffer, length));
}

bool Socket::WouldBlock() const {
    return lastError_ == EWOULDBLOCK;
}

int Socket::RecvUntil(void* buffer, int length, long long timeoutMs) {
    CountDownTimer timer(static_cast<unsigned long long>(timeoutMs));
    auto* const bytes = static_cast<char*>(buffer);
    for (int received = 0; received < length;) {
        int const ready = IsOpen() ? platform::waitReadable(handle_, receivePollInterval) : -1;
        if (ready > 0) {
            int const got = Recv(bytes + received, length - received);
            if (got > 0) {
                received += got;
                timer.Reset(CountDownTimer::samePeriod);
                continue;
            }
            if (got < 0 && !WouldBlock()) {
                return received != 0 ? received : got;
            }
        }
        if (ready != 0) {
            // Do not spin: a stream at its end is always ready, and a closed socket never waits.
            sys::scheduler::sleepms(receivePollInterval);
        }
        if (timer.Expired()) {
            return received;
        }
    }
    return std::max(length, 0);
}

int Socket::_Read(void* buffer, int length, int timeoutMs) {
    auto* const bytes = static_cast<char*>(buffer);
    return transferUntil(
        length, timeoutMs, [this](int ms) { return checkRecv(ms); },
        [=, this](int done) { return BytesOrNone(Recv(bytes + done, length - done)); });
}

int Socket::_Write(void const* data, int length, int timeoutMs) {
    // With a peer that stops reading, a blocking send could exceed the deadline.
    bool const switched = blocking_ && platform::setNonBlocking(handle_, true) == 0;
    auto const* const bytes = static_cast<char const*>(data);
    int const written = transferUntil(
        length, timeoutMs, [this](int ms) { return checkSend(ms); },
        [=, this](int done) { return BytesOrNone(Send(bytes + done, length - done)); });
    if (switched) {
        platform::setNonBlocking(handle_, false);
    }
    return written;
}

int Socket::BytesOrNone(int result) const {
    return result < 0 && WouldBlock() ? 0 : result;
}

bool Socket::SetReadTimeout(int ms) {
    readTimeout_ = ms;
    return true;
}

bool Socket::SetWriteTimeout(int ms) {
    writeTimeout_ = ms;
    return true;
}

int Socket::SendTo(void const* data, int length, ClassRef<SocketAddr> const& to) {
    if (!to) {
        return -1;
    }
    return Remember(platform::sendDatagram(handle_, data, length, to->GetBytes(), to->GetSize()));
}

int Socket::SendTo(void const* data, int length, EndPoint const& to) {
    return SendTo(data, length, to.GetSocketAddress());
}

int Socket::SendTo(void const* data, int length, String const& to) {
    return SendTo(data, length, EndPoint(to, domain_, type_));
}

int Socket::SendDatagram(void const* data, int length, EndPoint const& to) {
    return SendTo(data, length, to);
}

int Socket::SendDatagram(void const* data, int length, IPv4Address const& to) {
    return SendTo(data, length, EndPoint(to, type_));
}

int Socket::SendDatagram(void const* data, int length, String const& to) {
    return SendTo(data, length, to);
}

int Socket::Broadcast(void const* data, int length, int port) {
    return SendTo(data, length, EndPoint("255.255.255.255", port, domain_, type_));
}

int Socket::RecvFrom(void* buffer, int length, ClassRef<SocketAddr>& from) {
    unsigned char bytes[platform::maxAddressLength];
    int size = sizeof bytes;
    int const got = Remember(platform::receiveDatagram(handle_, buffer, length, bytes, size));
    if (got >= 0) {
        from = new SocketAddr(bytes, size);
    }
    return got;
}

int Socket::RecvFrom(void* buffer, int length, ClassRef<EndPoint>& from) {
    ClassRef<SocketAddr> address;
    int const got = RecvFrom(buffer, length, address);
    if (got >= 0) {
        from = new EndPoint(address, type_);
    }
    return got;
}

int Socket::RecvFrom(void* buffer, int length, String& from) {
    ClassRef<SocketAddr> address;
    int const got = RecvFrom(buffer, length, address);
    if (got >= 0) {
        address->GetName(from, true);
    }
    return got;
}

}  // namespace core
