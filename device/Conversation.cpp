#include "device/Conversation.h"

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

Conversation::Conversation(Wire& wire, Behaviour& behaviour, Observer& observer, Inbox& inbox,
                           std::uint32_t acceptToken)
    : wire_(wire),
      behaviour_(behaviour),
      observer_(observer),
      inbox_(inbox),
      acceptToken_(acceptToken) {}

Outcome Conversation::Run() {
    if (Act(Step::Connect, {}) && TakeRequest() && TakeHeader() && TakeFile() && TakeTrailer() &&
        ReportProgress()) {
        outcome_ = Outcome::complete;
    }
    // After an error the updater disconnects, so later steps of the device do not count.
    return wire_.HasRefused() && outcome_ != Outcome::silent ? Outcome::refused : outcome_;
}

bool Conversation::TakeRequest() {
    if (!wire_.ReceiveRecord(request_)) {
        return Lost(Step::Request);
    }
    observer_.OnRequest(request_);
    Check const checks[] = {
        {request_.magic == update::wireMagic, DeviceStatus::InvalidMagic},
        {request_.magicComplement == update::wireMagicComplement,
         DeviceStatus::InvalidMagicComplement},
        {request_.fileSize <= update::largestFile, DeviceStatus::DataSizeTooBig},
    };
    if (auto const fault = firstFault(checks)) {
        return Refuse(Step::Request, *fault);
    }
    return Answer(Step::Request, UpdateNotification::Accepted, acceptToken_);
}

bool Conversation::TakeHeader() {
    update::UpdateTransferHeader header;
    if (!wire_.ReceiveRecord(header)) {
        return Lost(Step::Header);
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
        return Refuse(Step::Header, *fault);
    }
    // The updater takes silence here for consent.
    return Act(Step::Header, {});
}

bool Conversation::TakeFile() {
    char piece[update::chunkSize];
    while (bytes_ < request_.fileSize) {
        int const wanted = static_cast<int>(
            std::min<std::uint32_t>(update::chunkSize, request_.fileSize - bytes_));
        int const got = wire_.ReceiveSome(piece, wanted);
        if (got == 0) {
            return Lost(Step::Data);
        }
        observer_.OnData(piece, got);
        crc_ = core::crc32::update(piece, got, crc_);
        bytes_ += static_cast<std::uint32_t>(got);
        if (int const error = inbox_.Keep(piece, got); error != 0) {
            ReportFileError(error);
            return Refuse(Step::Data, DeviceStatus::ReadWriteError);
        }
        if (!Act(Step::Data, {}, static_cast<std::uint32_t>(got))) {
            return false;
        }
    }
    observer_.OnFile(bytes_, crc_);
    return true;
}

bool Conversation::TakeTrailer() {
    update::UpdateTransferTrailer trailer;
    if (!wire_.ReceiveRecord(trailer)) {
        return Lost(Step::Trailer);
    }
    observer_.OnTrailer(trailer);
    Check const checks[] = {
        {trailer.magic == update::wireMagic, DeviceStatus::InvalidMagic},
        {trailer.fileSize == request_.fileSize, DeviceStatus::InvalidDataSize},
        {trailer.fileCrc == request_.fileCrc, DeviceStatus::InvalidCrc},
        {trailer.acceptToken == acceptToken_, DeviceStatus::InvalidPassword},
    };
    if (auto const fault = firstFault(checks)) {
        return Refuse(Step::Trailer, *fault);
    }
    return Answer(Step::Trailer, UpdateNotification::Received, 0);
}

bool Conversation::ReportProgress() {
    if (crc_ != request_.fileCrc) {
        return Refuse(Step::Checked, DeviceStatus::WrongFileCrc);
    }
    if (auto const fault = inbox_.TakesArchivesOnly() ? ArchiveFault() : std::nullopt) {
        return Refuse(Step::Checked, *fault);
    }
    if (inbox_.Stores() && !Store()) {
        return Refuse(Step::Checked, DeviceStatus::ReadWriteError);
    }
    return Answer(Step::Checked, UpdateNotification::Checked, 0) &&
           Answer(Step::Processing, UpdateNotification::Processing, 0) &&
           Answer(Step::Complete, UpdateNotification::Complete,
                  UpdateNotification::FirmwareRestart);
}

std::optional<DeviceStatus> Conversation::ArchiveFault() {
    using Reader = core::StreamSequencerReader;
    Reader reader;
    int error = inbox_.Open();
    reader.SetStream(inbox_.File());
    int const result = reader.Check();
    if (error == 0) {
        error = reader.GetReadError();
    }
    if (error != 0) {
        observer_.OnNotChecked(error, inbox_.Path());
        return DeviceStatus::ReadWriteError;
    }
    observer_.OnArchive(result, reader.FileCount());
    Check const checks[] = {
        {result != Reader::endsEarly, DeviceStatus::InvalidDataSize},
        {result != Reader::notAnArchive && result != Reader::wrongTrailer,
         DeviceStatus::InvalidMagic},
        {result != Reader::versionTooOld && result != Reader::versionTooNew,
         DeviceStatus::InvalidVersion},
        {result == Reader::sound, DeviceStatus::WrongFileCrc},
        {reader.FindMisplacedFile() < 0, DeviceStatus::InvalidDataSize},
    };
    return firstFault(checks);
}

bool Conversation::Store() {
    int const result = inbox_.Store();
    observer_.OnStored(result, inbox_.Path());
    return result == 0;
}

void Conversation::ReportFileError(int error) {
    if (inbox_.Stores()) {
        observer_.OnStored(error, inbox_.Path());
    } else {
        observer_.OnNotChecked(error, inbox_.Path());
    }
}

bool Conversation::Act(Step step, std::optional<Notification> answer, std::uint32_t newBytes) {
    bool const goesOn =
        behaviour_.Act({step, acceptToken_, bytes_ - newBytes, bytes_, answer}, wire_);
    if (!goesOn && wire_.IsBroken()) {
        outcome_ = wire_.Why();
    }
    return goesOn;
}

bool Conversation::Answer(Step step, std::uint32_t code, std::uint32_t value) {
    return Act(step, Notification{code, value});
}

bool Conversation::Refuse(Step step, DeviceStatus status) {
    Answer(step, UpdateNotification::Error, static_cast<std::uint32_t>(status));
    return false;
}

bool Conversation::Lost(Step step) {
    outcome_ = wire_.Why();
    if (outcome_ == Outcome::silent) {
        Answer(step, UpdateNotification::Error, static_cast<std::uint32_t>(DeviceStatus::Timeout));
    }
    return false;
}

}  // namespace device
