#include <atomic>

#include "device/loadScenario.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/core/net/SocketPair.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using device::Step;

/// What the reader promises of each action, whatever the file says.
void requireInRange(device::Action const& action) {
    using enum device::Verb;
    bool const sends = action.verb == notify || action.verb == together || action.verb == drip ||
                       action.verb == cut || action.verb == wrongMagic || action.verb == wrongCrc ||
                       action.verb == repeat || action.verb == flood;
    require(sends != action.records.empty());
    require(action.after >= 1);
    require(action.numbers[0] <= 1'000'000'000 && action.numbers[1] <= 86'400'000);
    require(action.verb != cut ||
            (action.records.size() == 1 && action.numbers[0] >= 1 && action.numbers[0] <= 15));
    require(action.verb != slow || action.numbers[0] >= 1);
}

/// Every step ends where the updater is gone and the device is to stop.
void requireEnds(device::Scenario& scenario) {
    SocketPair pair;
    pair.near.Abort();
    device::Observer nobody;
    std::atomic<bool> const stop = true;
    device::DeviceLimits const limits;
    device::Wire wire(*pair.far, limits, nobody, stop);
    for (int step = 0; step <= static_cast<int>(Step::Complete); ++step) {
        scenario.Act({Step{step}, 1, 0, 1000, {}}, wire);
    }
}

}  // namespace

/// The input is a scenario file.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static support::TemporaryDirectory const folder;
    core::String const path = folder.Write("scenario", Input(data, size).Rest()).c_str();

    std::vector<core::Fault> errors;
    device::Scenario scenario;
    bool const good = device::loadScenario(path, scenario, errors);
    require(good == (errors.empty()));
    for (core::Fault const& error : errors) {
        require(error.title == "Bad scenario" && !error.message.IsEmpty());
    }
    if (good) {
        for (auto const& [step, actions] : scenario.steps) {
            for (device::Action const& action : actions) {
                requireInRange(action);
            }
        }
        requireEnds(scenario);
    }
    return 0;
}
