#pragma once

#include "core/net/Socket.h"
#include "core/runtime/Application.h"
#include "core/runtime/CountDownTimer.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "update/SessionLimits.h"
#include "update/protocol/records.h"

namespace update {

struct UpdateSession;

/// The updater: sends one file to one device and follows it until the update is complete.
/// Whatever goes wrong is added to the errors as title and message, requests termination, and is
/// printed; the exit status stays 0, so scripts read the "***" lines.
class UpdateApplication : public core::Application {
public:
    UpdateApplication();

    /// The program: banner, command line, and either errors and usage screen, the usage screen
    /// alone, or a session.
    void Main(int argc, char const* const* argv);

protected:
    /// The whole session, from the checks of the options to the completed update. It always
    /// requests termination; true when the update is complete.
    bool Init() override;

    /// Receives and checks one record within ms milliseconds and prints its progress line: 0 for a
    /// sound one, whatever its code; 1 when none came; -1 when it is not sound or reports an error.
    /// All but 0 add an error. The record is in host order then. The last argument has no effect.
    int GetResponse(core::Socket& socket, UpdateNotification& response, int ms, bool);
    /// Brings a received record into host order, sound or not. False, with an error added, when
    /// its magic or CRC is wrong or when it reports an error of the device.
    bool AdjustAndCheckResponse(UpdateNotification& response);

    /// Adds title and message to the errors (an empty title adds nothing), requests termination
    /// and, with show, prints all errors. Always false.
    bool QuitWithError(core::String const& title, core::String const& message, bool show);
    /// Prints a "***" line for each error, and an empty line.
    void showErrors() const;

    core::StringArray errors{16};  ///< entries of title "=" message
    SessionLimits limits;

private:
    /// The steps of a session. Each returns false when it has quit.
    bool RunSession();
    bool ReadOptions(UpdateSession& session);
    bool ReadAddress(UpdateSession& session);
    bool Connect(UpdateSession& session);
    bool MeasureFile(UpdateSession& session);
    bool Announce(UpdateSession& session);
    bool SendHeader(UpdateSession& session);
    bool SendFile(UpdateSession& session);
    bool SendPiece(UpdateSession& session, char const* piece, int length,
                   core::CountDownTimer& stall);
    bool SendTrailer(UpdateSession& session);
    bool AwaitCompletion(UpdateSession& session);

    template <class Record>
    bool SendRecord(UpdateSession& session, Record const& record);
    bool QuitWithCommunicationError();
    bool QuitWithOpenError(UpdateSession const& session);
    bool QuitWithReadError(UpdateSession const& session);
    /// Prints what the errors hold already.
    bool QuitWithList();
};

}  // namespace update
