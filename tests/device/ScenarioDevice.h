#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "device/DeviceServer.h"
#include "device/Scenario.h"

/// A device in this process that does what a scenario says, and keeps what it sees.
class ScenarioDevice {
public:
    /// Acts in the place of an honest device; see device::Behaviour::Act.
    using Act = std::function<bool(device::StepContext const&, device::DeviceConnection&)>;

    /// Listens on a free port; without an act the device is honest.
    explicit ScenarioDevice(Act act = {}, device::DeviceTimeouts const& timeouts = {},
                            device::UpdatePolicy const& policy = {});
    /// A device that a scenario file of this text describes.
    explicit ScenarioDevice(std::string const& scenario);
    ScenarioDevice(ScenarioDevice const&) = delete;
    ScenarioDevice& operator=(ScenarioDevice const&) = delete;
    ~ScenarioDevice();

    static device::Scenario scenarioOf(std::string const& text);

    /// "127.0.0.1:Port"
    std::string Address() const;
    std::string Port() const;
    /// Waits until a number of sessions have come to their end and stops the device: how they
    /// ended.
    std::vector<device::UpdateResult> End(std::size_t sessions = 1);
    /// All bytes of files that came, once the device has ended.
    std::string const& File() const { return record_.file; }
    /// All bytes that came, and all that were sent, once the device has ended.
    std::string const& Received() const { return record_.received; }
    std::string const& Sent() const { return record_.sent; }

private:
    struct ScriptedBehaviour : device::Behaviour {
        ScenarioDevice::Act act;
        bool OnStep(device::StepContext const& context,
                    device::DeviceConnection& connection) override;
    };
    struct Record : device::Observer {
        std::string file;
        std::string received, sent;
        std::mutex mutex;
        std::condition_variable ended;
        std::vector<device::UpdateResult> results;
        static void add(std::string& all, void const* bytes, int length);
        void OnReceived(void const* bytes, int length) override { add(received, bytes, length); }
        void OnSent(void const* bytes, int length) override { add(sent, bytes, length); }
        void OnData(void const* bytes, int length) override;
        void OnEnd(device::UpdateResult result) override;
    };

    ScriptedBehaviour behaviour_;
    Record record_;
    std::unique_ptr<device::DeviceServer> server_;
};
