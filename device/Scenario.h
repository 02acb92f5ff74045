#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "device/Action.h"
#include "device/Behaviour.h"

namespace device {

/// A device that does at some steps what it was told, and is honest at the others. It acts in the
/// same way in each session. What it must refuse it refuses at any step: a bad record of the
/// updater is never covered up.
class Scenario : public Behaviour {
public:
    bool OnStep(StepContext const& context, DeviceConnection& connection) override;

    /// What is done at a step, in order; a step that is not here is that of an honest device.
    std::map<Step, std::vector<Action>> steps;
    /// Of the random bytes.
    std::uint32_t seed = 1;
    /// Bytes of the file that the system takes before the device reads them; 0 leaves it to the
    /// system, whose room can be larger than a whole file.
    std::uint32_t receiveBuffer = 0;

private:
    bool Execute(Action const& action, StepContext const& context, DeviceConnection& connection,
                 std::mt19937& random) const;
};

}  // namespace device
