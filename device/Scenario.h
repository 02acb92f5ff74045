#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <vector>

#include "core/text/String.h"
#include "core/text/message.h"
#include "device/Behaviour.h"

namespace device {

/// A notification of an action.
struct ScenarioRecord {
    std::uint32_t code;
    std::optional<std::uint32_t> value;  ///< missing: the value that a conforming device sends
};

enum class ActionType {
    notify,      ///< sends each record separately
    together,    ///< sends the records in one send
    drip,        ///< sends the records byte by byte, numbers[0] ms apart
    cut,         ///< sends the first numbers[0] bytes of a record
    wrongMagic,  ///< sends the records with a wrong magic and the CRC that matches it
    wrongCrc,    ///< sends the records with a wrong CRC
    garbage,     ///< sends numbers[0] random bytes
    repeat,      ///< sends the records numbers[0] times, numbers[1] ms apart
    flood,       ///< sends the records again and again until the updater disconnects
    wait,        ///< neither sends nor reads for numbers[0] ms
    silent,      ///< reads on but sends nothing until the updater disconnects
    slow,        ///< from now on reads at most numbers[0] bytes at a time, numbers[1] ms apart
    close,       ///< closes the connection
    reset,       ///< resets the connection
};

/// An action of a device at a step.
struct Action {
    ActionType type;
    /// At the data step: executed once this many bytes of the file are received.
    std::uint32_t after = 1;
    std::array<std::uint32_t, 2> numbers = {};
    std::vector<ScenarioRecord> records;
};

/// A device that executes given actions at some steps and conforms at the others, in the same way
/// in every session. Invalid input is rejected at every step: a bad record is never masked.
class Scenario : public Behaviour {
public:
    bool OnStep(StepContext const& context, DeviceConnection& connection) override;

    /// The actions of a step, in order. A step that is missing here conforms.
    std::map<Step, std::vector<Action>> steps;
    /// The seed of the random bytes.
    std::uint32_t seed = 1;
    /// The approximate socket receive buffer in bytes; 0 for the system's default, which may exceed
    /// a whole file.
    std::uint32_t receiveBuffer = 0;

private:
    bool Execute(Action const& action, StepContext const& context, DeviceConnection& connection,
                 std::mt19937& random) const;
};

/// Returns the path of a scenario. A name that is neither an existing file nor contains a path
/// delimiter is that of a shipped scenario, with or without ".conf". Any other name is returned
/// unchanged.
core::String findScenario(core::String const& name);

/// Reads a scenario from the configuration file at path; docs/rehearsing.md describes its format.
/// Adds an error for each mistake and returns false if there are any.
bool loadScenario(core::String const& path, Scenario& scenario, std::vector<core::Fault>& errors);

}  // namespace device
