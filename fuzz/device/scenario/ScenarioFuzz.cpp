#include <atomic>

#include "device/Scenario.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/core/net/SocketPair.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using device::Step;

/// loadScenario guarantees these ranges for every file.
void requireInRange(device::Action const& action) {
    using enum device::ActionType;
    bool const sends = action.type == notify || action.type == together || action.type == drip ||
                       action.type == cut || action.type == wrongMagic || action.type == wrongCrc ||
                       action.type == repeat || action.type == flood;
    require(sends != action.records.empty());
    require(action.after >= 1);
    require(action.numbers[0] <= 1'000'000'000 && action.numbers[1] <= 86'400'000);
    require(action.type != cut ||
            (action.records.size() == 1 && action.numbers[0] >= 1 && action.numbers[0] <= 15));
    require(action.type != slow || action.numbers[0] >= 1);
}

/// Every step ends if the updater has disconnected and the device is stopped.
void requireEnds(device::Scenario& scenario) {
    SocketPair pair;
    pair.near.Abort();
    device::Observer ignoring;
    std::atomic<bool> const stop = true;
    device::DeviceTimeouts const timeouts;
    device::DeviceConnection connection(*pair.far, timeouts, ignoring, stop);
    for (int step = 0; step <= static_cast<int>(Step::busy); ++step) {
        scenario.OnStep({Step{step}, 1, 0, 1000, {}}, connection);
    }
}

}  // namespace

/// The input is a scenario file.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static support::TemporaryDirectory const directory;
    core::String const path = directory.Write("scenario", Input(data, size).Rest()).c_str();

    std::vector<core::Fault> errors;
    device::Scenario scenario;
    bool const loaded = device::loadScenario(path, scenario, errors);
    require(loaded == errors.empty());
    for (core::Fault const& error : errors) {
        require(error.title == "Bad scenario" && !error.message.IsEmpty());
    }
    if (loaded) {
        for (auto const& [step, actions] : scenario.steps) {
            for (device::Action const& action : actions) {
                requireInRange(action);
            }
        }
        requireEnds(scenario);
    }
    return 0;
}
