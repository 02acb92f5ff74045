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
    virtual void OnConnected() {}
    /// A valid record arrived that reports no error, expected or not. It is in host byte order.
    virtual void OnNotification(UpdateNotification const& /*notification*/) {}
    /// bytes of fileSize bytes have been sent; called every 262,144 bytes.
    virtual void OnSent(int /*bytes*/, int /*fileSize*/) {}
    virtual void OnFileSent(int /*fileSize*/) {}
    /// The trailer has been sent: from here on the device may be installing.
    virtual void OnWaiting() {}
    /// No notification arrived in time; left is the time until the session gives up.
    virtual void OnNotificationTimeout(core::Interval const& /*left*/) {}
    virtual void OnComplete() {}
};

}  // namespace update
