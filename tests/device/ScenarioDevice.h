#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "device/DeviceServer.h"
#include "device/Scenario.h"

/// A device in this process that executes a scenario and records its sessions.
class ScenarioDevice {
public:
    /// Replaces device::Behaviour::OnStep.
    using Act = std::function<bool(device::StepContext const&, device::DeviceConnection&)>;

    /// Listens on a free port. Without an act, the device is a conforming one.
    explicit ScenarioDevice(Act act = {}, device::DeviceTimeouts const& timeouts = {},
                            device::UpdatePolicy const& policy = {});
    /// The same with a scenario file of this text.
    explicit ScenarioDevice(std::string const& scenario);
    ScenarioDevice(ScenarioDevice const&) = delete;
    ScenarioDevice& operator=(ScenarioDevice const&) = delete;

    static device::Scenario scenarioOf(std::string const& text);

    /// "127.0.0.1:Port"
    std::string Address() const;
    std::string Port() const;
    /// Waits until this many sessions have ended, stops the device and returns the results of all.
    std::vector<device::UpdateResult> End(std::size_t sessions = 1);
    /// The received bytes of all files; complete after End.
    std::string const& File() const { return recorder_.file; }

private:
    struct ScriptedBehaviour : device::Behaviour {
        ScenarioDevice::Act act;
        bool OnStep(device::StepContext const& context,
                    device::DeviceConnection& connection) override {
            return act ? act(context, connection) : Behaviour::OnStep(context, connection);
        }
    };
    struct Recorder : device::Observer {
        std::string file;
        std::mutex mutex;
        std::condition_variable ended;
        std::vector<device::UpdateResult> results;
        void OnData(void const* bytes, int length) override;
        void OnEnd(device::UpdateResult result) override;
    };

    ScriptedBehaviour behaviour_;
    Recorder recorder_;
    std::unique_ptr<device::DeviceServer> server_;
};
