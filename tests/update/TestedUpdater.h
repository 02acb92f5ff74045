#pragma once

#include <string>
#include <vector>

#include "tests/support/StatusDirectory.h"
#include "tests/support/lines.h"
#include "update/UpdateApplication.h"

/// What the updater prints last of an update that succeeds.
inline std::string const updated = "The device is updated and it will restart itself if needed.";

/// The real updater with its seams in reach: the time limits, and the status file in a folder of
/// its own. A process has one application, so all tests of a process share it.
class TestedUpdater : private support::StatusDirectory, public update::UpdateApplication {
public:
    static TestedUpdater& Instance() {
        static TestedUpdater updater;
        return updater;
    }

    /// Sets the timeouts that a user meets, but for a short wait behind the header. A test shortens
    /// the one that it waits for, so that no slow machine runs into another.
    void UseProductTimeouts() {
        timeouts = {};
        // Honest devices are silent here, so it only costs time.
        timeouts.headerAnswer = 20;
    }

    /// Runs one session as "ravelink -o path -a address"; what it prints, line by line.
    std::vector<std::string> RunSession(std::string const& path, std::string const& address) {
        errors.Clear();
        char const* const words[] = {"ravelink", "-o", path.c_str(), "-a", address.c_str()};
        CommandLinePrepare(5, words, "o|origin=1>a|address=1", errors);
        return support::linesOf(support::outputOf([this] { Init(); }));
    }

    using UpdateApplication::AdjustAndCheckResponse;
    using UpdateApplication::errors;
    using UpdateApplication::timeouts;

private:
    TestedUpdater() = default;
};
