#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "core/net/ServerSocket.h"
#include "device/Behaviour.h"
#include "device/Observer.h"
#include "device/ReceivedUpdate.h"

namespace device {

/// A simulated device. Accepts one update after another, and rejects other updaters while one is in
/// progress. Each connection has a thread of its own, so that it cannot delay the update.
class DeviceServer : public core::ServerSocket {
public:
    /// Behaviour and observer must outlive the server.
    DeviceServer(Behaviour& behaviour, Observer& observer, DeviceTimeouts const& timeouts = {},
                 UpdatePolicy const& policy = {});
    /// Aborts the updates in progress and stops.
    ~DeviceServer() override;

    char const* ClassName() const override;

protected:
    void HandleConnection(core::ClassRef<core::Socket>& socket, core::String const& bind,
                          int index) override;

private:
    struct SessionThread;
    enum class State {
        idle,
        updating,
        closing,  ///< the update has ended, but its connection is still open
    };

    /// Removes the sessions that have ended. Returns whether another one may start.
    bool RemoveEndedSessions();
    /// Serves a connection to its end.
    void Serve(SessionThread& session);
    void RunSession(SessionThread& session, bool isBusy);
    /// Waits for the end of an update that is about to end. Returns false if it continues, or if
    /// an earlier connection runs the next one.
    bool BeginUpdate(SessionThread& session);

    Behaviour& behaviour_;
    Observer& observer_;
    DeviceTimeouts const timeouts_;
    UpdatePolicy const policy_;
    std::atomic<bool> stop_ = false;
    std::atomic<std::uint32_t> updates_ = 0;
    std::atomic<std::uint32_t> busySessions_ = 0;
    std::mutex mutex_;  ///< guards the rest
    std::condition_variable changed_;
    State state_ = State::idle;
    std::list<std::unique_ptr<SessionThread>> sessions_;  ///< in the order of their connections
};

}  // namespace device
