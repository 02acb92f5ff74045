#pragma once

#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "device/Scenario.h"

namespace device {

/// Reads a scenario from a configuration file: docs/rehearsing.md lists its names. False when
/// anything is wrong with it, which is then added to errors as title "=" message.
bool loadScenario(core::String const& path, Scenario& scenario, core::StringArray& errors);

}  // namespace device
