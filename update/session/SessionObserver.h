#pragma once

#include "core/net/IPv4Address.h"
#include "core/time/Interval.h"
#include "update/protocol/records.h"

namespace update {

/// Receives the events of a session, in order, on the session's thread; the session waits
/// meanwhile. Ignores them by default. The end of a failed session is not an event: see
/// Session::Run.
class SessionObserver {
public:
    virtual ~SessionObserver() = default;

    virtual void OnConnecting(core::IPv4Address const& /*device*/) {}
    /// local is this computer's end of the connection.
    virtual void OnConnected(core::IPv4Address const& /*local*/) {}
    /// A valid record arrived that reports no error, expected or not. It is in host byte order.
    virtual void OnNotification(UpdateNotification const& /*notification*/) {}
    /// bytes of fileSize bytes have been sent; called every 262,144 bytes.
    virtual void OnSent(int /*bytes*/, int /*fileSize*/) {}
    /// bytes of fileSize bytes have been sent, the last of them stalled milliseconds ago; called
    /// before the first byte and then about every 200 ms, also while the device accepts nothing.
    virtual void OnSending(int /*bytes*/, int /*fileSize*/, long long /*stalled*/) {}
    virtual void OnFileSent(int /*fileSize*/) {}
    /// The next bytes are those of the trailer: until this returns, none of them has been sent.
    virtual void OnTrailer() {}
    /// The trailer has been sent: from here on the device may be installing.
    virtual void OnWaiting() {}
    /// No notification arrived in time; left is the time until the session gives up.
    virtual void OnNotificationTimeout(core::Interval const& /*left*/) {}
    virtual void OnComplete() {}
};

}  // namespace update
