#include "update/session/Session.h"

#include <algorithm>

#include "core/stream/FileStream.h"
#include "sys/file.h"
#include "update/session/exchange.h"

namespace update {

using core::CountDownTimer;
using core::fault;
using core::Interval;
using core::IPv4Address;
using core::String;
using Kind = Failure::Kind;

namespace {

int const reportStep = 262'144;  ///< bytes between two OnSent events

/// Whether the notification reports progress with a file that has arrived.
bool isStage(UpdateNotification const& notification) {
    return notification.code >= UpdateNotification::Received &&
           notification.code <= UpdateNotification::Processing;
}

}  // namespace

std::optional<Failure> checkFile(String const& path) {
    if (sys::file::exists(path)) {
        return {};
    }
    return Failure{fault("Update file missing",
                         "Cannot find the file \"%1\". Please provide the correct path", path)};
}

std::optional<Failure> readDevice(String const& text, IPv4Address& device) {
    String const address = text.Replace(":", "|");
    device = IPv4Address(address);
    // Reject only the null address: of 10.0.0.999, whose first octets are valid, 10.0.0.0 is tried,
    // as users know it from earlier versions.
    if (device.IsNull()) {
        return Failure{fault("Bad address",
                             "The address provided (%1) is not a valid IPv4 address. Please use "
                             "the form IP:Port",
                             address)};
    }
    if (device.Port() == IPv4Address::noPort) {
        device.SetPortA(defaultPort);
    }
    if (device.Port() < 1 || device.Port() > largestPort) {
        return Failure{fault("Invalid port",
                             "The address provided (%1) does not contain a valid port. Please use "
                             "the form IP|Port",
                             address)};
    }
    return {};
}

Session::Session(Task const& task, SessionObserver& observer, SessionTimeouts const& timeouts)
    : task_(task), observer_(observer), timeouts_(timeouts) {
    // Strings that share their characters must stay on one thread; the session may run on another.
    task_.path.Unique();
}

Outcome Session::Run() {
    if (auto const failure = initSockets()) {
        Fail(*failure);
        return outcome_;
    }
    socket_.emplace(core::SocketDomain::IPv4, core::SocketType::stream);
    if (Connect() && ReadSizeAndCrc() && SendRequest() && SendHeader() && SendFile() &&
        SendTrailer()) {
        AwaitCompletion();
    }
    socket_.reset();
    core::Socket::done();
    return outcome_;
}

bool Session::Connect() {
    phase_ = Phase::connection;
    observer_.OnConnecting(task_.device);
    String const peer = task_.device.GetAsString(true);
    if (socket_->Connect(peer) != core::socket_result::success) {
        return Fail(
            {fault("Connection failed",
                   "Unable to connect to (%1). Please check the address and try again", peer),
             Kind::connection});
    }
    observer_.OnConnected();
    return socket_->setBlocking(false) || FailToCommunicate(Kind::system);
}

bool Session::ReadSizeAndCrc() {
    phase_ = Phase::request;
    long long const size = sys::file::getFileSize(task_.path);
    if (size < 0) {
        return FailToOpen();
    }
    if (size > largestFile) {
        return Fail({fault("Update file too big", "The file \"%1\" exceeds the maximum of %2 bytes",
                           task_.path, largestFile),
                     Kind::input});
    }
    request_.fileSize = static_cast<std::uint32_t>(size);
    // With a partial CRC the device would reject the file only after the transfer.
    return sys::file::calculatesCRC32(task_.path, request_.fileCrc) == 0 || FailToRead();
}

bool Session::SendRequest() {
    if (!SendRecord(request_)) {
        return false;
    }
    UpdateNotification answer;
    if (auto const failure = Receive(answer, timeouts_.requestAnswer)) {
        return Fail(*failure);
    }
    if (answer.code != UpdateNotification::Accepted) {
        return Fail({fault("The device do not recognize us", "Something very bad happened here"),
                     Kind::protocol});
    }
    acceptToken_ = answer.value;
    return true;
}

bool Session::SendHeader() {
    phase_ = Phase::header;
    UpdateTransferHeader header;
    header.acceptToken = acceptToken_;
    header.fileSize = request_.fileSize;
    if (!SendRecord(header)) {
        return false;
    }
    UpdateNotification answer;
    auto const failure = Receive(answer, timeouts_.headerAnswer);
    // Devices need not answer the header.
    return !failure || failure->kind == Kind::timeout || Fail(*failure);
}

bool Session::SendFile() {
    phase_ = Phase::transfer;
    core::FileStream file;
    if (file.Open(task_.path, sys::platform::openRead) != 0) {
        return FailToOpen();
    }
    CountDownTimer stall{Interval(timeouts_.transferStall)};
    char chunk[chunkSize];
    int sent = 0;
    long long nextReport = reportStep;
    while (sent < FileSize()) {
        // Never more than announced, even if the file has grown.
        int const length = file.Read(chunk, std::min(chunkSize, FileSize() - sent));
        if (length < 1) {
            return FailToRead();
        }
        if (!SendChunk(chunk, length, stall)) {
            return false;
        }
        sent += length;
        if (sent >= nextReport) {
            nextReport += reportStep;
            observer_.OnSent(sent, FileSize());
        }
    }
    observer_.OnFileSent(FileSize());
    return true;
}

bool Session::SendTrailer() {
    phase_ = Phase::trailer;
    UpdateTransferTrailer trailer;
    trailer.fileSize = request_.fileSize;
    trailer.fileCrc = request_.fileCrc;
    trailer.acceptToken = acceptToken_;
    // Otherwise the trailer waits until the device has acknowledged the file's end, up to 40 ms.
    // Set it only now: a fast network transfers the file in larger segments without it.
    socket_->setTCPNoDelay(true);
    return SendRecord(trailer);
}

bool Session::AwaitCompletion() {
    phase_ = Phase::completion;
    CountDownTimer completion{Interval(timeouts_.completion)};
    observer_.OnWaiting();
    for (;;) {
        CountDownTimer wait{Interval(timeouts_.notification)};
        UpdateNotification notification;
        auto const failure = Receive(notification, timeouts_.notification);
        if (failure && failure->kind != Kind::timeout) {
            return Fail(*failure);
        }
        if (failure) {
            // Receiving from a connection that was reset fails at once, on some systems every time.
            wait.WaitForIt();
            observer_.OnNotificationTimeout(Interval(
                static_cast<long long>(completion.Remaining(1000, CountDownTimer::unlimited))));
        } else if (notification.code == UpdateNotification::Complete) {
            outcome_.restart = notification.value;
            observer_.OnComplete();
            return true;
        } else if (!isStage(notification)) {
            return Fail(
                {fault("Unexpected error", "We received something unexpected. Check the device"),
                 Kind::protocol});
        }
        if (completion.Expired()) {
            return Fail({fault("Timeout error",
                               "Maybe the system is still updating, but we waited %1 minutes and "
                               "we are tired",
                               SessionTimeouts::completionMinutes),
                         Kind::timeout});
        }
    }
}

bool Session::SendChunk(char const* chunk, int length, CountDownTimer& stall) {
    switch (sendAll(*socket_, chunk, length, stall)) {
        case SendResult::failed:
            return Fail({fault("Error sending the file",
                               "It was impossible to send a bucket of data of \"%1\". This is a "
                               "triple mess",
                               task_.path),
                         Kind::lost});
        case SendResult::stalled:
            return Fail({fault("Timeout sending the file",
                               "It was impossible to complete the transfer of \"%1\". This is a "
                               "double mess",
                               task_.path),
                         Kind::timeout});
        case SendResult::sent:
            break;
    }
    return true;
}

template <class Record>
bool Session::SendRecord(Record const& record) {
    Record const onWire = swapped(record);
    CountDownTimer stall{Interval(timeouts_.transferStall)};
    SendResult const result = sendAll(*socket_, &onWire, recordSize, stall);
    return result == SendResult::sent ||
           FailToCommunicate(result == SendResult::stalled ? Kind::timeout : Kind::lost);
}

std::optional<Failure> Session::Receive(UpdateNotification& notification, int ms) {
    auto failure = receiveResponse(*socket_, notification, ms);
    if (!failure) {
        observer_.OnNotification(notification);
    }
    return failure;
}

bool Session::Fail(Failure const& failure) {
    outcome_.failure = failure;
    outcome_.failure->phase = phase_;
    return false;
}

bool Session::FailToCommunicate(Kind kind) {
    return Fail({fault("Unable to communicate", "Error sending data to the device"), kind});
}

bool Session::FailToOpen() {
    return Fail(
        {fault("Error opening the file",
               "Cannot open the file \"%1\". Please provide the correct rights", task_.path),
         Kind::input});
}

bool Session::FailToRead() {
    return Fail({fault("Error reading from the file",
                       "Error occurred reading the file \"%1\". This is a mess", task_.path),
                 Kind::input});
}

}  // namespace update
