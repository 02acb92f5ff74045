#include "device/DeviceSession.h"

#include <algorithm>

#include "core/archive/StreamSequencerReader.h"
#include "core/crc/crc32.h"
#include "update/protocol/records.h"

namespace device {

using update::DeviceStatus;
using update::UpdateNotification;

namespace {

/// One thing that a record must satisfy, and what the device says when it does not.
struct Check {
    bool holds;
    DeviceStatus otherwise;
};

template <std::size_t count>
std::optional<DeviceStatus> firstFault(Check const (&checks)[count]) {
    for (Check const& check : checks) {
        if (!check.holds) {
            return check.otherwise;
        }
    }
    return {};
}

}  // namespace

DeviceSession::DeviceSession(DeviceConnection& connection, Behaviour& behaviour, Observer& observer,
                             ReceivedUpdate& received, std::uint32_t acceptToken)
    : connection_(connection),
      behaviour_(behaviour),
      observer_(observer),
      received_(received),
      acceptToken_(acceptToken) {}

UpdateResult DeviceSession::Run() {
    if (RunStep(Step::connect, {}) && ReceiveRequest() && ReceiveHeader() && ReceiveFile() &&
        ReceiveTrailer() && FinishUpdate()) {
        result_ = UpdateResult::complete;
    }
    // After an error the updater disconnects, so later steps of the device do not count.
    return connection_.HasSentError() && result_ != UpdateResult::timedOut ? UpdateResult::rejected
                                                                           : result_;
}

bool DeviceSession::ReceiveRequest() {
    if (!connection_.ReceiveRecord(request_)) {
        return HandleReceiveFailure(Step::request);
    }
    observer_.OnRequest(request_);
    Check const checks[] = {
        {request_.magic == update::wireMagic, DeviceStatus::InvalidMagic},
        {request_.magicComplement == update::wireMagicComplement,
         DeviceStatus::InvalidMagicComplement},
        {request_.fileSize <= update::largestFile, DeviceStatus::DataSizeTooBig},
    };
    if (auto const fault = firstFault(checks)) {
        return Reject(Step::request, *fault);
    }
    return Reply(Step::request, UpdateNotification::Accepted, acceptToken_);
}

bool DeviceSession::ReceiveHeader() {
    update::UpdateTransferHeader header;
    if (!connection_.ReceiveRecord(header)) {
        return HandleReceiveFailure(Step::header);
    }
    observer_.OnHeader(header);
    Check const checks[] = {
        {header.magic == update::wireMagic, DeviceStatus::InvalidMagic},
        {header.acceptToken == acceptToken_, DeviceStatus::InvalidPassword},
        {header.headerConstant == update::UpdateTransferHeader::constant,
         DeviceStatus::InvalidVersion},
        {header.fileSize == request_.fileSize, DeviceStatus::InvalidDataSize},
    };
    if (auto const fault = firstFault(checks)) {
        return Reject(Step::header, *fault);
    }
    // The updater takes silence here for consent.
    return RunStep(Step::header, {});
}

bool DeviceSession::ReceiveFile() {
    char piece[update::chunkSize];
    while (bytes_ < request_.fileSize) {
        int const wanted = static_cast<int>(
            std::min<std::uint32_t>(update::chunkSize, request_.fileSize - bytes_));
        int const got = connection_.ReceiveSome(piece, wanted);
        if (got == 0) {
            return HandleReceiveFailure(Step::data);
        }
        observer_.OnData(piece, got);
        crc_ = core::crc32::update(piece, got, crc_);
        bytes_ += static_cast<std::uint32_t>(got);
        if (int const error = received_.Append(piece, got); error != 0) {
            ReportFileError(error);
            return Reject(Step::data, DeviceStatus::ReadWriteError);
        }
        if (!RunStep(Step::data, {}, static_cast<std::uint32_t>(got))) {
            return false;
        }
    }
    observer_.OnFile(bytes_, crc_);
    return true;
}

bool DeviceSession::ReceiveTrailer() {
    update::UpdateTransferTrailer trailer;
    if (!connection_.ReceiveRecord(trailer)) {
        return HandleReceiveFailure(Step::trailer);
    }
    observer_.OnTrailer(trailer);
    Check const checks[] = {
        {trailer.magic == update::wireMagic, DeviceStatus::InvalidMagic},
        {trailer.fileSize == request_.fileSize, DeviceStatus::InvalidDataSize},
        {trailer.fileCrc == request_.fileCrc, DeviceStatus::InvalidCrc},
        {trailer.acceptToken == acceptToken_, DeviceStatus::InvalidPassword},
    };
    if (auto const fault = firstFault(checks)) {
        return Reject(Step::trailer, *fault);
    }
    return Reply(Step::trailer, UpdateNotification::Received, 0);
}

bool DeviceSession::FinishUpdate() {
    if (crc_ != request_.fileCrc) {
        return Reject(Step::checked, DeviceStatus::WrongFileCrc);
    }
    if (auto const fault = received_.RequiresArchive() ? CheckArchive() : std::nullopt) {
        return Reject(Step::checked, *fault);
    }
    if (received_.Stores() && !Store()) {
        return Reject(Step::checked, DeviceStatus::ReadWriteError);
    }
    return Reply(Step::checked, UpdateNotification::Checked, 0) &&
           Reply(Step::processing, UpdateNotification::Processing, 0) &&
           Reply(Step::complete, UpdateNotification::Complete, UpdateNotification::FirmwareRestart);
}

std::optional<DeviceStatus> DeviceSession::CheckArchive() {
    using Reader = core::StreamSequencerReader;
    Reader reader;
    int error = received_.Open();
    reader.SetStream(received_.File());
    int const result = reader.Check();
    if (error == 0) {
        error = reader.GetReadError();
    }
    if (error != 0) {
        observer_.OnNotChecked(error, received_.Path());
        return DeviceStatus::ReadWriteError;
    }
    observer_.OnArchive(result, reader.FileCount());
    Check const checks[] = {
        {result != Reader::truncated, DeviceStatus::InvalidDataSize},
        {result != Reader::notAnArchive && result != Reader::wrongTrailer,
         DeviceStatus::InvalidMagic},
        {result != Reader::versionTooOld && result != Reader::versionTooNew,
         DeviceStatus::InvalidVersion},
        {result == Reader::valid, DeviceStatus::WrongFileCrc},
        {reader.FindMisplacedFile() < 0, DeviceStatus::InvalidDataSize},
    };
    return firstFault(checks);
}

bool DeviceSession::Store() {
    int const result = received_.Store();
    observer_.OnStored(result, received_.Path());
    return result == 0;
}

void DeviceSession::ReportFileError(int error) {
    if (received_.Stores()) {
        observer_.OnStored(error, received_.Path());
    } else {
        observer_.OnNotChecked(error, received_.Path());
    }
}

bool DeviceSession::RunStep(Step step, std::optional<Notification> answer, std::uint32_t newBytes) {
    bool const goesOn =
        behaviour_.OnStep({step, acceptToken_, bytes_ - newBytes, bytes_, answer}, connection_);
    if (!goesOn && connection_.IsBroken()) {
        result_ = connection_.StopReason();
    }
    return goesOn;
}

bool DeviceSession::Reply(Step step, std::uint32_t code, std::uint32_t value) {
    return RunStep(step, Notification{code, value});
}

bool DeviceSession::Reject(Step step, DeviceStatus status) {
    Reply(step, UpdateNotification::Error, static_cast<std::uint32_t>(status));
    return false;
}

bool DeviceSession::HandleReceiveFailure(Step step) {
    result_ = connection_.StopReason();
    if (result_ == UpdateResult::timedOut) {
        Reply(step, UpdateNotification::Error, static_cast<std::uint32_t>(DeviceStatus::Timeout));
    }
    return false;
}

}  // namespace device
