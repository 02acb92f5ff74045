#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace device {

/// A notification as a scenario names it; without a value it has that of an honest device.
struct ScenarioRecord {
    std::uint32_t code;
    std::optional<std::uint32_t> value;
};

enum class ActionType {
    notify,      ///< the records, each in a send of its own
    together,    ///< the records in one send
    drip,        ///< the records byte by byte, numbers[0] ms apart
    cut,         ///< the first numbers[0] bytes of a record
    wrongMagic,  ///< the records with another magic, and a CRC that is right for it
    wrongCrc,    ///< the records with another CRC
    garbage,     ///< numbers[0] random bytes
    repeat,      ///< the records numbers[0] times, numbers[1] ms apart
    flood,       ///< the records, over and over, as long as the updater is there
    wait,        ///< nothing, not even reading, for numbers[0] ms
    silent,      ///< takes what comes and says nothing until the updater is gone
    slow,        ///< from here on takes at most numbers[0] bytes, then none for numbers[1] ms
    close,       ///< ends the connection
    reset,       ///< ends the connection with a reset
};

/// One thing that a scenario has the device do at a step.
struct Action {
    ActionType type;
    /// At the data step: executed once this many bytes of the file are received.
    std::uint32_t after = 1;
    std::array<std::uint32_t, 2> numbers = {};
    std::vector<ScenarioRecord> records;
};

}  // namespace device
