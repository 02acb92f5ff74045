#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "core/net/IPv4Address.h"
#include "core/runtime/Application.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "device/DeviceServer.h"
#include "device/Reporter.h"
#include "device/Scenario.h"

namespace device {

/// The program around the simulated devices: its usage screen lists what it can be told.
class DeviceApplication : public core::Application {
public:
    DeviceApplication();
    ~DeviceApplication() override;

    /// Banner, command line, and either errors and usage screen, the usage screen alone, or a run.
    void Main(int argc, char const* const* argv);

    /// 0 done, 1 failed (it could not listen; with --once: an update was not completed), 2 wrong
    /// usage.
    int Result() override { return result_; }

protected:
    /// Starts to listen.
    bool Init() override;
    void Done() override;

private:
    struct Device {
        std::unique_ptr<Reporter> reporter;
        std::unique_ptr<DeviceServer> server;
    };

    // Each reads an option; false when it has quit.
    bool ReadAddress();
    bool ReadCount();
    bool ReadFolder();
    bool ReadScenario();

    /// Starts the device of that number, from 0 on.
    bool StartDevice(int index);
    /// Prints the errors and ends the application with result. Returns false.
    bool Quit(std::vector<core::Fault> const& errors, int result);

    int result_ = 0;
    core::IPv4Address address_;  ///< of the first device
    int count_ = 1;
    UpdatePolicy policy_;
    Scenario scenario_;
    std::atomic<int> awaited_ = 0;  ///< devices whose first update has not ended yet
    std::vector<Device> devices_;
};

}  // namespace device
