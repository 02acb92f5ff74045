#include "device/DeviceSession.h"

#include <algorithm>

#include "core/archive/StreamSequencerReader.h"
#include "core/crc/crc32.h"
#include "update/protocol/records.h"

namespace device {

using update::DeviceStatus;
using update::UpdateNotification;

namespace {

/// A condition of a valid update, and the status to reject the update with otherwise.
struct Check {
    bool passed;
    DeviceStatus status;
};

template <std::size_t count>
std::optional<DeviceStatus> firstFailure(Check const (&checks)[count]) {
    for (Check const& check : checks) {
        if (!check.passed) {
            return check.status;
        }
    }
    return {};
}

}  // namespace

DeviceSession::DeviceSession(DeviceConnection& connection, Behaviour& behaviour, Observer& observer,
                             ReceivedUpdate& receivedUpdate, std::uint32_t acceptToken)
    : connection_(connection),
      behaviour_(behaviour),
      observer_(observer),
      receivedUpdate_(receivedUpdate),
      acceptToken_(acceptToken) {}

UpdateResult DeviceSession::Run() {
    if (RunStep(Step::connect, {}) && ReceiveRequest() && AcceptRequest() && ReceiveHeader() &&
        ReceiveFile() && ReceiveTrailer() && FinishUpdate()) {
        result_ = UpdateResult::complete;
    }
    return Result();
}

UpdateResult DeviceSession::RunBusy() {
    if (ReceiveRequest()) {
        Reject(Step::busy, DeviceStatus::SystemBusy);
    }
    return Result();
}

UpdateResult DeviceSession::Result() const {
    // The updater disconnects after an error, so the later steps of the device do not count.
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
        {request_.fileSize <= receivedUpdate_.Policy().maxSize, DeviceStatus::DataSizeTooBig},
    };
    if (auto const status = firstFailure(checks)) {
        return Reject(Step::request, *status);
    }
    return true;
}

bool DeviceSession::AcceptRequest() {
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
    if (auto const status = firstFailure(checks)) {
        return Reject(Step::header, *status);
    }
    // No answer here means consent.
    return RunStep(Step::header, {});
}

bool DeviceSession::ReceiveFile() {
    char chunk[update::chunkSize];
    while (bytes_ < request_.fileSize) {
        int const wanted = static_cast<int>(
            std::min<std::uint32_t>(update::chunkSize, request_.fileSize - bytes_));
        int const length = connection_.ReceiveSome(chunk, wanted);
        if (length == 0) {
            return HandleReceiveFailure(Step::data);
        }
        observer_.OnData(chunk, length);
        crc_ = core::crc32::update(chunk, length, crc_);
        bytes_ += static_cast<std::uint32_t>(length);
        if (int const error = receivedUpdate_.Append(chunk, length); error != 0) {
            ReportFileError(error);
            return Reject(Step::data, DeviceStatus::ReadWriteError);
        }
        if (!RunStep(Step::data, {}, static_cast<std::uint32_t>(length))) {
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
    if (auto const status = firstFailure(checks)) {
        return Reject(Step::trailer, *status);
    }
    return Reply(Step::trailer, UpdateNotification::Received, 0);
}

bool DeviceSession::FinishUpdate() {
    if (crc_ != request_.fileCrc) {
        return Reject(Step::checked, DeviceStatus::WrongFileCrc);
    }
    if (auto const status = receivedUpdate_.RequiresArchive() ? CheckArchive() : std::nullopt) {
        return Reject(Step::checked, *status);
    }
    if (receivedUpdate_.Stores() && !Store()) {
        return Reject(Step::checked, DeviceStatus::ReadWriteError);
    }
    return Reply(Step::checked, UpdateNotification::Checked, 0) &&
           Reply(Step::processing, UpdateNotification::Processing, 0) &&
           Reply(Step::complete, UpdateNotification::Complete, UpdateNotification::FirmwareRestart);
}

std::optional<DeviceStatus> DeviceSession::CheckArchive() {
    using Reader = core::StreamSequencerReader;
    Reader reader;
    int error = receivedUpdate_.Open();
    reader.SetStream(receivedUpdate_.File());
    int const result = reader.Check();
    if (error == 0) {
        error = reader.GetReadError();
    }
    if (error != 0) {
        observer_.OnNotChecked(error, receivedUpdate_.Path());
        return DeviceStatus::ReadWriteError;
    }
    ArchiveCheck check = {result, reader.FileCount(), reader.FindMisplacedFile(), {}};
    auto const& target = receivedUpdate_.Policy().target;
    if (target && reader.targetId && reader.targetId->View() != *target) {
        check.otherTarget = reader.targetId;
    }
    observer_.OnArchive(check);
    Check const checks[] = {
        {result != Reader::truncated, DeviceStatus::InvalidDataSize},
        {result != Reader::notAnArchive && result != Reader::wrongTrailer,
         DeviceStatus::InvalidMagic},
        {result != Reader::versionTooOld && result != Reader::versionTooNew,
         DeviceStatus::InvalidVersion},
        {result == Reader::valid, DeviceStatus::WrongFileCrc},
        {check.misplacedFile < 0, DeviceStatus::InvalidDataSize},
        {!check.otherTarget, DeviceStatus::InvalidTarget},
    };
    return firstFailure(checks);
}

bool DeviceSession::Store() {
    int const result = receivedUpdate_.Store();
    observer_.OnStored(result, receivedUpdate_.Path());
    return result == 0;
}

void DeviceSession::ReportFileError(int error) {
    if (receivedUpdate_.Stores()) {
        observer_.OnStored(error, receivedUpdate_.Path());
    } else {
        observer_.OnNotChecked(error, receivedUpdate_.Path());
    }
}

bool DeviceSession::RunStep(Step step, std::optional<Notification> defaultReply,
                            std::uint32_t newBytes) {
    bool const isContinuing = behaviour_.OnStep(
        {step, acceptToken_, bytes_ - newBytes, bytes_, defaultReply}, connection_);
    if (!isContinuing && connection_.IsBroken()) {
        result_ = connection_.StopReason();
    }
    return isContinuing;
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
        Reject(step, DeviceStatus::Timeout);
    }
    return false;
}

}  // namespace device
