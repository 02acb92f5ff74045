#include "update/session/Session.h"

#include <algorithm>
#include <cerrno>

#include "core/crc/crc32.h"
#include "core/net/EndPoint.h"
#include "core/stream/FileStream.h"
#include "sys/file.h"
#include "update/session/UpdateFile.h"

namespace update {

using core::CountDownTimer;
using core::fault;
using core::Interval;
using core::IPv4Address;
using core::String;

namespace {

int const reportStep = 262'144;  ///< bytes between two OnSent events
int const reportPeriod = 200;    ///< ms between two OnSending events

core::Fault communicationFault() {
    return fault("Unable to communicate", "Error sending data to the device");
}

Failure timeUp() {
    return {fault("Time is up", "The update was stopped before its end was sent"), Cause::timeUp};
}

Failure unexpectedRecord() {
    return {fault("Unexpected error", "We received something unexpected. Check the device"),
            Cause::unexpectedRecord};
}

Cause connectCause(int error) {
    switch (error) {
        case ECONNREFUSED:
            return Cause::connectRefused;
        case ETIMEDOUT:
            return Cause::connectTimeout;
        case EHOSTUNREACH:
        case ENETUNREACH:
            return Cause::unreachable;
        default:
            return Cause::connectFailed;
    }
}

}  // namespace

std::optional<Failure> checkFile(String const& path) {
    if (sys::file::exists(path)) {
        return {};
    }
    return fileMissing(path);
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
                             address),
                       Cause::badAddress};
    }
    if (device.Port() == IPv4Address::noPort) {
        device.SetPortA(defaultPort);
    }
    if (device.Port() < 1 || device.Port() > largestPort) {
        return Failure{fault("Invalid port",
                             "The address provided (%1) does not contain a valid port. Please use "
                             "the form IP|Port",
                             address),
                       Cause::badAddress};
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
    if (!ConnectTo(peer)) {
        Cause const cause = connectCause(socket_->LastError());
        return Fail(
            IsTimeUp()
                ? timeUp()
                : Failure{fault("Connection failed",
                                "Unable to connect to (%1). Please check the address and try again",
                                peer),
                          cause});
    }
    core::EndPoint local;
    socket_->GetSockName(local);
    observer_.OnConnected(IPv4Address(local.GetComposedAddress()));
    return socket_->setBlocking(false) || Fail({communicationFault(), Cause::noSockets});
}

bool Session::ConnectTo(String const& peer) {
    return task_.strict == nullptr
               ? socket_->Connect(peer) == core::socket_result::success
               : socket_->Connect(core::EndPoint(task_.device, core::SocketType::stream),
                                  Limited(task_.strict->connectTimeout)) ==
                     core::socket_result::success;
}

bool Session::ReadSizeAndCrc() {
    phase_ = Phase::request;
    if (task_.strict != nullptr) {
        request_.fileSize = static_cast<std::uint32_t>(task_.strict->file.Size());
        request_.fileCrc = task_.strict->file.Crc();
        return true;
    }
    long long const size = sys::file::getFileSize(task_.path);
    if (size < 0) {
        return Fail(fileNotOpened(task_.path));
    }
    if (size > largestFile) {
        return Fail(fileTooBig(task_.path));
    }
    request_.fileSize = static_cast<std::uint32_t>(size);
    // With a partial CRC the device would reject the file only after the transfer.
    return sys::file::calculatesCRC32(task_.path, request_.fileCrc) == 0 ||
           Fail(fileNotRead(task_.path));
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
                     Cause::unexpectedRecord});
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
    if (failure) {
        return failure->cause == Cause::noAnswer || Fail(*failure);
    }
    return task_.strict == nullptr || answer.code != UpdateNotification::Complete ||
           Fail(unexpectedRecord());
}

bool Session::SendFile() {
    phase_ = Phase::transfer;
    core::FileStream opened;
    if (task_.strict == nullptr && opened.Open(task_.path, sys::platform::openRead) != 0) {
        return Fail(fileNotOpened(task_.path));
    }
    core::FileStream& file = task_.strict != nullptr ? task_.strict->file.Stream() : opened;
    file.Seek(0);
    CountDownTimer stall{Interval(timeouts_.transferStall)};
    char chunk[chunkSize];
    std::uint32_t crc = 0;
    long long nextReport = reportStep;
    observer_.OnSending(0, FileSize(), 0);
    report_.Reset(reportPeriod);
    while (sent_ < FileSize()) {
        // Never more than announced, even if the file has grown.
        int const length = file.Read(chunk, std::min(chunkSize, FileSize() - sent_));
        if (length < 1) {
            return Fail(task_.strict != nullptr && length == 0 ? fileChanged(task_.path)
                                                               : fileNotRead(task_.path));
        }
        if (!SendChunk(chunk, length, stall)) {
            return false;
        }
        sent_ += length;
        if (!LookBack()) {
            return false;
        }
        if (IsTimeUp()) {
            return Fail(timeUp());
        }
        if (task_.strict != nullptr) {
            crc = core::crc32::update(chunk, length, crc);
        }
        if (sent_ >= nextReport) {
            nextReport += reportStep;
            observer_.OnSent(sent_, FileSize());
        }
        ReportSending(stall);
    }
    if (task_.strict != nullptr && crc != request_.fileCrc) {
        return Fail(fileChanged(task_.path));
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
    observer_.OnTrailer();
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
        if (failure && failure->cause != Cause::noAnswer) {
            return Fail(*failure);
        }
        if (failure) {
            // Receiving from a connection that was reset fails at once, on some systems every time.
            wait.WaitForIt();
            observer_.OnNotificationTimeout(Interval(
                static_cast<long long>(completion.Remaining(1000, CountDownTimer::unlimited))));
        } else if (notification.code == UpdateNotification::Complete) {
            outcome_.restart = notification.value;
            outcome_.sent = sent_;
            observer_.OnComplete();
            return true;
        } else if (!isStage(notification.code)) {
            return Fail(unexpectedRecord());
        }
        if (completion.Expired()) {
            return Fail({fault("Timeout error",
                               "Maybe the system is still updating, but we waited %1 minutes and "
                               "we are tired",
                               SessionTimeouts::completionMinutes),
                         Cause::completionTimeout});
        }
    }
}

bool Session::SendChunk(char const* chunk, int length, CountDownTimer& stall) {
    SendResult const result = Send(chunk, length, stall);
    return result == SendResult::sent ||
           FailToSend(result, result == SendResult::stalled
                                  ? fault("Timeout sending the file",
                                          "It was impossible to complete the transfer of \"%1\". "
                                          "This is a double mess",
                                          task_.path)
                                  : fault("Error sending the file",
                                          "It was impossible to send a bucket of data of \"%1\". "
                                          "This is a triple mess",
                                          task_.path));
}

template <class Record>
bool Session::SendRecord(Record const& record) {
    Record const onWire = swapped(record);
    CountDownTimer stall{Interval(timeouts_.transferStall)};
    SendResult const result = Send(&onWire, recordSize, stall);
    return result == SendResult::sent || FailToSend(result, communicationFault());
}

SendResult Session::Send(void const* data, int length, CountDownTimer& stall) {
    return sendAll(*socket_, data, length, stall, [this, &stall] {
        ReportSending(stall);
        return LookBack() && !IsTimeUp();
    });
}

void Session::ReportSending(CountDownTimer const& stall) {
    if (phase_ == Phase::transfer && report_.Elapsed() >= reportPeriod) {
        report_.Reset(reportPeriod);
        observer_.OnSending(sent_, FileSize(), static_cast<long long>(stall.Elapsed()));
    }
}

std::optional<Failure> Session::Receive(UpdateNotification& notification, int ms) {
    auto failure = task_.strict != nullptr ? reader_.Receive(*socket_, notification, Limited(ms))
                                           : receiveResponse(*socket_, notification, ms);
    if (!failure) {
        observer_.OnNotification(notification);
    } else if (failure->cause == Cause::noAnswer && IsTimeUp()) {
        failure = timeUp();
    }
    return failure;
}

bool Session::LookBack() {
    while (task_.strict != nullptr) {
        UpdateNotification notification;
        auto const failure = reader_.Receive(*socket_, notification, 0);
        if (failure) {
            return failure->cause == Cause::noAnswer || Fail(*failure);
        }
        observer_.OnNotification(notification);
        if (!isStage(notification.code)) {
            return Fail(unexpectedRecord());
        }
    }
    return true;
}

int Session::Limited(int ms) const {
    CountDownTimer const* const deadline = task_.strict->deadline;
    return deadline == nullptr || phase_ >= Phase::trailer
               ? ms
               : static_cast<int>(deadline->RemainingTimeout(0, static_cast<unsigned>(ms)));
}

bool Session::IsTimeUp() const {
    return task_.strict != nullptr && phase_ < Phase::trailer && Limited(1) == 0;
}

bool Session::Fail(Failure const& failure) {
    outcome_.failure = failure;
    outcome_.failure->phase = phase_;
    outcome_.sent = sent_;
    return false;
}

bool Session::FailToSend(SendResult result, core::Fault const& fault) {
    int const error = socket_->LastError();
    // What the device has sent is the better reason. After a reset, which sending has reported, its
    // data only ends.
    bool const isEnd = outcome_.failure || !LookBack();
    if (isEnd && (error != ECONNRESET || outcome_.failure->cause != Cause::connectionEnded)) {
        return false;
    }
    switch (result) {
        case SendResult::stalled:
            return Fail({fault, Cause::stalled});
        case SendResult::abandoned:
            return Fail(timeUp());
        case SendResult::failed:
        case SendResult::sent:
            break;
    }
    return Fail({fault, error == ECONNRESET || error == EPIPE ? Cause::connectionReset
                                                              : Cause::sendFailed});
}

}  // namespace update
