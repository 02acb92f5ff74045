#pragma once

#include <string>
#include <vector>

#include "tests/support/StatusFolder.h"
#include "update/UpdateApplication.h"

/// The real updater with its seams in reach: the time limits, and the status file in a folder of
/// its own. A process has one application, so all tests of a process share it.
class TestedUpdater : private support::StatusFolder, public update::UpdateApplication {
public:
    static TestedUpdater& Instance();

    /// Sets the limits that a user meets, but for a short wait behind the header. A test shortens
    /// the one that it waits for, so that no slow machine runs into another.
    void UseProductLimits();

    /// Runs one session as "ravelink -o path -a address"; what it prints, line by line.
    std::vector<std::string> RunSession(std::string const& path, std::string const& address);

    using UpdateApplication::AdjustAndCheckResponse;
    using UpdateApplication::errors;
    using UpdateApplication::limits;

private:
    TestedUpdater() = default;
};
