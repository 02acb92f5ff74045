#pragma once

#include <vector>

#include "core/text/String.h"
#include "core/text/message.h"
#include "device/Scenario.h"

namespace device {

/// Reads a scenario from a configuration file: docs/rehearsing.md lists its names. False when
/// anything is wrong with it, which is then added to errors.
bool loadScenario(core::String const& path, Scenario& scenario, std::vector<core::Fault>& errors);

}  // namespace device
