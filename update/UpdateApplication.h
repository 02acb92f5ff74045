#pragma once

#include "core/net/Socket.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "program/Program.h"
#include "update/session/Session.h"

namespace update {

/// The updater: runs one session as its command line asks and prints its events. Every failure is
/// added to the errors as title and message, requests termination and is printed; the exit status
/// stays 0, so scripts read the "***" lines.
class UpdateApplication : public program::Program {
public:
    UpdateApplication();

protected:
    /// Checks the options and runs the session. Always requests termination. Returns whether the
    /// update is complete.
    bool Init() override;

    /// Receives a record, allowing ms milliseconds between bytes, checks it and prints its line.
    /// Returns 0 for a valid record, whatever its code, 1 if no whole record arrived, and -1 if the
    /// record is invalid or reports an error; all but 0 add an error. Leaves the record in host
    /// byte order. The last argument is ignored.
    int GetResponse(core::Socket& socket, UpdateNotification& response, int ms, bool);
    /// Converts a received record to host byte order, valid or not. Returns false, with an error
    /// added, if its magic or CRC is wrong or if it reports an error.
    bool AdjustAndCheckResponse(UpdateNotification& response);

    /// Adds title and message to the errors (an empty title adds nothing), requests termination
    /// and, if show is set, prints all errors. Returns false.
    bool QuitWithError(core::String const& title, core::String const& message, bool show);
    /// Prints a "***" line for each error, then an empty line.
    void showErrors() const;

    core::StringArray errors{16};  ///< entries of title "=" message
    SessionTimeouts timeouts;

    void ShowUsageErrors(std::vector<core::Fault> const& faults) override;

private:
    bool ReadTask(Task& task);
    bool RunSession(Task const& task);
    bool QuitWithFailure(Failure const& failure);
    void AddError(core::Fault const& fault);
};

}  // namespace update
