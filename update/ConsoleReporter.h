#pragma once

#include "core/text/StringArray.h"
#include "update/session/SessionObserver.h"

namespace update {

/// Prints a line for each event of a session.
class ConsoleReporter : public SessionObserver {
public:
    /// errors, which must outlive the reporter, receives an entry for each timeout of a
    /// notification: after a long wait they are all printed if the session fails.
    explicit ConsoleReporter(core::StringArray& errors) : errors_(errors) {}

    void OnConnecting(core::IPv4Address const& device) override;
    void OnConnected() override;
    void OnNotification(UpdateNotification const& notification) override;
    void OnSent(int bytes, int fileSize) override;
    void OnFileSent(int fileSize) override;
    void OnWaiting() override;
    void OnNotificationTimeout(core::Interval const& left) override;
    void OnComplete() override;

private:
    core::StringArray& errors_;
};

}  // namespace update
