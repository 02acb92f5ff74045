#pragma once

#include <memory>

#include "core/runtime/Application.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "device/Behaviour.h"
#include "device/DeviceServer.h"
#include "device/Reporter.h"

namespace device {

/// The program around the simulated device: option -b says where it listens, --once that it ends
/// after one update.
class DeviceApplication : public core::Application {
public:
    DeviceApplication();
    ~DeviceApplication() override;

    /// Banner, command line, and either errors and usage screen, the usage screen alone, or a run.
    void Main(int argc, char const* const* argv);

    /// 0 done, 1 failed (it could not listen; with --once: the update was not completed), 2 wrong
    /// usage.
    int Result() override { return result_; }

protected:
    /// Starts to listen.
    bool Init() override;
    void Done() override;

private:
    bool Quit(core::String const& title, core::String const& message, int result);
    static void showUsage();

    int result_ = 0;
    Behaviour behaviour_;
    std::unique_ptr<Reporter> reporter_;
    std::unique_ptr<DeviceServer> server_;
};

}  // namespace device
