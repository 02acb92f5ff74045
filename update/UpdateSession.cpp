#include "update/UpdateSession.h"

#include "sys/file.h"
#include "update/UpdateApplication.h"
#include "update/print.h"
#include "update/protocol/records.h"

namespace update {

using core::CountDownTimer;
using core::Interval;
using core::IPv4Address;
using core::String;

namespace {

/// Whether the notification says how far the device has come with the file it has.
bool isStage(UpdateNotification const& response) {
    return response.code >= UpdateNotification::Received &&
           response.code <= UpdateNotification::Processing;
}

}  // namespace

bool UpdateApplication::Init() {
    if (!core::Socket::init()) {
        return QuitWithError("Socket init error",
                             "Unable to initialize the WinSock stack correctly", true);
    }
    bool const complete = RunSession();
    core::Socket::done();
    return complete;
}

bool UpdateApplication::RunSession() {
    UpdateSession session;
    return ReadOptions(session) && Connect(session) && MeasureFile(session) && Announce(session) &&
           SendHeader(session) && SendFile(session) && SendTrailer(session) &&
           AwaitCompletion(session);
}

bool UpdateApplication::ReadOptions(UpdateSession& session) {
    if (!GetOptionValues("o", session.path)) {
        return QuitWithError("Origin file name missing", "Please provide the correct -o option",
                             true);
    }
    if (!sys::file::exists(session.path)) {
        return QuitWithError(
            "Update file missing",
            String::format("Cannot find the file \"%1\". Please provide the correct path")
                .argi(1, session.path),
            true);
    }
    return ReadAddress(session);
}

bool UpdateApplication::ReadAddress(UpdateSession& session) {
    String text;
    if (!GetOptionValues("a", text)) {
        return QuitWithError("Sensor IP address missing", "Please provide the correct -a option",
                             true);
    }
    text = text.Replace(":", "|");
    session.address = IPv4Address(text);
    // Only an address of nothing but zeros is refused: one that was good up to its last octet is
    // tried, as it always was.
    if (session.address.IsNull()) {
        return QuitWithError("Bad address",
                             String::format("The address provided (%1) is not a valid IPv4 "
                                            "address. Please use the form IP:Port")
                                 .argi(1, text),
                             true);
    }
    if (session.address.Port() == IPv4Address::noPort) {
        session.address.SetPortA(defaultPort);
    }
    if (session.address.Port() < 1 || session.address.Port() > largestPort) {
        return QuitWithError("Invalid port",
                             String::format("The address provided (%1) does not contain a valid "
                                            "port. Please use the form IP|Port")
                                 .argi(1, text),
                             true);
    }
    return true;
}

bool UpdateApplication::Connect(UpdateSession& session) {
    println(String::format("- Connecting to: %1:%2 ...")
                .argi(1, session.address.GetAsString(false))
                .argi(2, session.address.Port()),
            true);
    String const peer = session.address.GetAsString(true);
    if (session.socket.Connect(peer) != core::socket_result::success) {
        return QuitWithError(
            "Connection failed",
            String::format("Unable to connect to (%1). Please check the address and try again")
                .argi(1, peer),
            true);
    }
    println("  Connected!", true);
    // From here on no send may block: see sendAll.
    if (!session.socket.setBlocking(false)) {
        return QuitWithCommunicationError();
    }
    return true;
}

bool UpdateApplication::MeasureFile(UpdateSession& session) {
    long long const size = sys::file::getFileSize(session.path);
    if (size < 0) {
        return QuitWithOpenError(session);
    }
    if (size > largestFile) {
        return QuitWithError("Update file too big",
                             String::format("The file \"%1\" exceeds the maximum of %2 bytes")
                                 .argi(2, largestFile)
                                 .argi(1, session.path),
                             true);
    }
    session.fileSize = static_cast<int>(size);
    // With the CRC of a part the device would take the whole file, and then refuse it.
    return sys::file::calculatesCRC32(session.path, session.fileCrc) == 0 ||
           QuitWithReadError(session);
}

bool UpdateApplication::Announce(UpdateSession& session) {
    UpdateRequest request;
    request.fileSize = static_cast<std::uint32_t>(session.fileSize);
    request.fileCrc = session.fileCrc;
    if (!SendRecord(session, request)) {
        return false;
    }
    if (GetResponse(session.socket, session.response, limits.requestAnswer, true) != 0) {
        return QuitWithList();
    }
    if (session.response.code != UpdateNotification::Accepted) {
        return QuitWithError("The device do not recognize us", "Something very bad happened here",
                             true);
    }
    session.acceptToken = session.response.value;
    return true;
}

bool UpdateApplication::SendHeader(UpdateSession& session) {
    UpdateTransferHeader header;
    header.acceptToken = session.acceptToken;
    header.fileSize = static_cast<std::uint32_t>(session.fileSize);
    if (!SendRecord(session, header)) {
        return false;
    }
    int const result = GetResponse(session.socket, session.response, limits.headerAnswer, true);
    if (result < 0) {
        return QuitWithList();
    }
    if (result > 0) {
        // Devices need not answer the header: silence is no error, now or later.
        errors.Delete(errors.Count() - 1);
    }
    return true;
}

bool UpdateApplication::SendTrailer(UpdateSession& session) {
    UpdateTransferTrailer trailer;
    trailer.fileSize = static_cast<std::uint32_t>(session.fileSize);
    trailer.fileCrc = session.fileCrc;
    trailer.acceptToken = session.acceptToken;
    // Otherwise the trailer waits until the device has acknowledged the file's end, up to 40 ms.
    // Not before: without it a fast line takes the file in larger pieces.
    session.socket.setTCPNoDelay(true);
    return SendRecord(session, trailer);
}

bool UpdateApplication::AwaitCompletion(UpdateSession& session) {
    CountDownTimer completion(static_cast<unsigned long long>(limits.completion));
    println("  The update process may take a while. Please wait...", true);
    for (;;) {
        CountDownTimer silence(static_cast<unsigned long long>(limits.notification));
        int const result = GetResponse(session.socket, session.response, limits.notification, true);
        if (result < 0) {
            return QuitWithList();
        }
        if (result > 0) {
            // A connection that was reset fails at once, and on some systems every time: keep the
            // pace of a device that is only silent.
            silence.WaitForIt();
            Interval const left(
                static_cast<long long>(completion.Remaining(1000, CountDownTimer::unlimited)));
            println(String::format("  System is still updating. %1 until timeout")
                        .argi(1, left.ToString(Interval::CEStringFormat{7})),
                    true);
        } else if (session.response.code == UpdateNotification::Complete) {
            println("The device is updated and it will restart itself if needed.", true);
            RequestTermination(normalRequest);
            return true;
        } else if (!isStage(session.response)) {
            return QuitWithError("Unexpected error",
                                 "We received something unexpected. Check the device", true);
        }
        if (completion.Expired()) {
            return QuitWithError("Timeout error",
                                 String::format("Maybe the system is still updating, but we waited "
                                                "%1 minutes and we are tired")
                                     .argi(1, SessionLimits::completionMinutes),
                                 true);
        }
    }
}

template <class Record>
bool UpdateApplication::SendRecord(UpdateSession& session, Record const& record) {
    Record const onWire = swapped(record);
    CountDownTimer stall(static_cast<unsigned long long>(limits.transferStall));
    if (sendAll(session.socket, &onWire, recordSize, stall) != SendOutcome::sent) {
        return QuitWithCommunicationError();
    }
    return true;
}

bool UpdateApplication::QuitWithCommunicationError() {
    return QuitWithError("Unable to communicate", "Error sending data to the device", true);
}

bool UpdateApplication::QuitWithOpenError(UpdateSession const& session) {
    return QuitWithError(
        "Error opening the file",
        String::format("Cannot open the file \"%1\". Please provide the correct rights")
            .argi(1, session.path),
        true);
}

bool UpdateApplication::QuitWithReadError(UpdateSession const& session) {
    return QuitWithError("Error reading from the file",
                         String::format("Error occurred reading the file \"%1\". This is a mess")
                             .argi(1, session.path),
                         true);
}

bool UpdateApplication::QuitWithList() {
    return QuitWithError(String(), String(), true);
}

}  // namespace update
