#include <algorithm>

#include "core/console/Console.h"
#include "core/stream/FileStream.h"
#include "update/UpdateApplication.h"
#include "update/UpdateSession.h"
#include "update/print.h"

namespace update {

using core::Console;
using core::String;

namespace {

int const reportStep = 262'144;  ///< bytes from one progress report to the next
int const writabilityPoll = 25;  ///< ms of waiting between two looks at the stall timer

String sizeInColor(int bytes, int color) {
    return Console::color(core::FormatByteSize(bytes, false), Console::Color{color});
}

}  // namespace

SendOutcome sendAll(core::Socket& socket, void const* data, int length,
                    core::CountDownTimer& stall) {
    auto const* const bytes = static_cast<char const*>(data);
    for (int done = 0; done < length;) {
        // Sending first saves a wait for each piece; the wait comes when there is no room.
        int const taken = socket.Send(bytes + done, length - done);
        if (taken > 0) {
            done += taken;
            stall.Reset(core::CountDownTimer::samePeriod);
            continue;
        }
        if (taken == 0 || !socket.WouldBlock()) {
            return SendOutcome::failed;
        }
        socket.CanSend(writabilityPoll);
        if (stall.Expired()) {
            return SendOutcome::stalled;
        }
    }
    return SendOutcome::sent;
}

bool UpdateApplication::SendFile(UpdateSession& session) {
    core::FileStream file;
    if (file.Open(session.path, sys::platform::openRead) != 0) {
        return QuitWithOpenError(session);
    }
    core::CountDownTimer stall(static_cast<unsigned long long>(limits.transferStall));
    char piece[chunkSize];
    int sent = 0;
    long long nextReport = reportStep;
    while (sent < session.fileSize) {
        // Never more than was announced, even when the file has grown since.
        int const length = file.Read(piece, std::min(chunkSize, session.fileSize - sent));
        if (length < 1) {
            return QuitWithReadError(session);
        }
        if (!SendPiece(session, piece, length, stall)) {
            return false;
        }
        sent += length;
        if (sent >= nextReport) {
            nextReport += reportStep;
            printProgress(
                String::format(">   Transferred by now: %1").argi(1, sizeInColor(sent, 11)));
        }
    }
    printProgress(String::format("- File completely sent: %1").argi(1, sizeInColor(sent, 10)));
    return true;
}

bool UpdateApplication::SendPiece(UpdateSession& session, char const* piece, int length,
                                  core::CountDownTimer& stall) {
    switch (sendAll(session.socket, piece, length, stall)) {
        case SendOutcome::failed:
            return QuitWithError("Error sending the file",
                                 String::format("It was impossible to send a bucket of data of "
                                                "\"%1\". This is a triple mess")
                                     .argi(1, session.path),
                                 true);
        case SendOutcome::stalled:
            return QuitWithError("Timeout sending the file",
                                 String::format("It was impossible to complete the transfer of "
                                                "\"%1\". This is a double mess")
                                     .argi(1, session.path),
                                 true);
        case SendOutcome::sent:
            break;
    }
    return true;
}

}  // namespace update
