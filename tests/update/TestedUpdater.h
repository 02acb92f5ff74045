#pragma once

#include <string>
#include <vector>

#include "tests/support/StatusDirectory.h"
#include "tests/support/lines.h"
#include "update/UpdateApplication.h"

/// What the updater prints last of an update that succeeds.
inline std::string const updated = "The device is updated and it will restart itself if needed.";

/// The updater with access to its timeouts and errors, and with a status file in a directory of its
/// own. A process has one application, so all tests of a process share it.
class TestedUpdater : private support::StatusDirectory, public update::UpdateApplication {
public:
    static TestedUpdater& Instance() {
        static TestedUpdater updater;
        return updater;
    }

    /// Sets the default timeouts, but a short one for the answer to the header. Tests shorten only
    /// the timeout that they wait for, so that slow machines do not run into others.
    void UseProductTimeouts() {
        timeouts = {};
        // Conforming devices do not answer the header, so the wait only costs time.
        timeouts.headerAnswer = 20;
    }

    /// Runs one session as "ravelink -o path -a address". Returns the lines that it prints.
    std::vector<std::string> RunSession(std::string const& path, std::string const& address) {
        errors.Clear();
        char const* const arguments[] = {"ravelink", "-o", path.c_str(), "-a", address.c_str()};
        CommandLinePrepare(5, arguments, "o|origin=1>a|address=1", errors);
        return support::linesOf(support::outputOf([this] { Init(); }));
    }

    using UpdateApplication::errors;
    using UpdateApplication::GetResponse;
    using UpdateApplication::timeouts;

private:
    TestedUpdater() = default;
};
