#pragma once

#include "core/text/String.h"
#include "update/session/SessionObserver.h"

namespace update {

/// Turns the events of a session into lines for people. A derived class prints them.
class LineReporter : public SessionObserver {
public:
    void OnConnecting(core::IPv4Address const& device) override;
    void OnConnected(core::IPv4Address const& local) override;
    void OnNotification(UpdateNotification const& notification) override;
    void OnSent(int bytes, int fileSize) override;
    void OnFileSent(int fileSize) override;
    void OnWaiting() override;
    void OnNotificationTimeout(core::Interval const& left) override;
    void OnComplete() override;

protected:
    virtual void Print(core::String const& line) = 0;
    /// Prints a line that the next one of this kind may replace.
    virtual void PrintProgress(core::String const& line) = 0;
};

}  // namespace update
