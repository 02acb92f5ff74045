#pragma once

#include <atomic>
#include <cstdint>

#include "core/net/ServerSocket.h"
#include "device/Behaviour.h"
#include "device/Observer.h"
#include "device/ReceivedUpdate.h"

namespace device {

/// A simulated device. Accepts one update after another on each of its addresses, each address on a
/// thread of its own.
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
    UpdateResult Serve(core::Socket& socket, core::String const& bind);

    Behaviour& behaviour_;
    Observer& observer_;
    DeviceTimeouts const timeouts_;
    UpdatePolicy const policy_;
    std::atomic<bool> stop_ = false;
    std::atomic<std::uint32_t> updates_ = 0;
};

}  // namespace device
