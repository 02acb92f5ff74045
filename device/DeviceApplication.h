#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "core/net/IPv4Address.h"
#include "device/DeviceServer.h"
#include "device/Reporter.h"
#include "device/Scenario.h"
#include "program/Program.h"

namespace device {

/// The program that runs simulated devices. It fails if it cannot listen or, with --once, if an
/// update was not completed.
class DeviceApplication : public program::Program {
public:
    DeviceApplication();

protected:
    /// Makes -V differ from -v.
    core::String OptionGrammar(int argc, char const* const* argv) const override;
    /// Starts to listen.
    bool Init() override;
    /// Stops the devices.
    void Done() override;

private:
    struct Device {
        std::unique_ptr<Reporter> reporter;
        std::unique_ptr<DeviceServer> server;
    };

    // Each reads an option and returns false if it has quit.
    bool ReadAddress();
    bool ReadCount();
    bool ReadMaxSize();
    bool ReadDirectory();
    bool ReadScenario();

    /// Starts the device with this index, from 0. Returns false if it has quit.
    bool StartDevice(int index);

    core::IPv4Address address_;  ///< of the first device
    int count_ = 1;
    UpdatePolicy policy_;
    Scenario scenario_;
    std::atomic<int> awaited_ = 0;  ///< devices whose first update has not ended yet
    std::vector<Device> devices_;
};

}  // namespace device
