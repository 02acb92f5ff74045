#include "update/session/exchange.h"

#include <climits>
#include <cstring>

namespace update {

using core::fault;

namespace {

int const writabilityPoll = 25;  ///< ms between two looks at the stall timer

struct StatusText {
    DeviceStatus status;
    char const* title;
    char const* message;
};

/// The grammar and the humour stay: users and support search for these texts.
constexpr StatusText statusTexts[] = {
    {DeviceStatus::InvalidMagic, "> Invalid magic number", "Error sending the acknowledge data"},
    {DeviceStatus::InvalidCrc, "> Invalid CRC", "Error sending the acknowledge data"},
    {DeviceStatus::InvalidDataSize, "> Invalid data size", "Error sending the acknowledge data"},
    {DeviceStatus::InvalidMagicComplement, "> Invalid ~magic number",
     "Error sending the acknowledge data"},
    {DeviceStatus::DataSizeTooBig, "> Invalid data size (too big)",
     "Error sending the acknowledge data"},
    {DeviceStatus::SystemBusy, "> System is busy",
     "The system is now busy and the update procedure must be postponed"},
    {DeviceStatus::InvalidPassword, "> Invalid password", "Error sending the acknowledge data"},
    {DeviceStatus::InvalidVersion, "> Invalid version", "Error sending the acknowledge data"},
    {DeviceStatus::Timeout, "> Timeout", "Maybe I am too lazy"},
    {DeviceStatus::ExchangeFailed, "> Unable to exchange information", "This should not happen"},
    {DeviceStatus::ReadWriteError, "> Read/write error", "The system received an I/O error"},
    {DeviceStatus::WrongFileCrc, "> Wrong file CRC", "Please do your math"},
    {DeviceStatus::Interrupted, "> Interrupted", "The update procedure was interrupted"},
    {DeviceStatus::GhostError, "> Ghost error", "Please call the Ghostbusters!"},
    {DeviceStatus::InvalidTarget, "> Invalid target",
     "This update is not applicable to this device"},
};

core::Fault statusFault(std::uint32_t status) {
    for (StatusText const& row : statusTexts) {
        if (row.status == DeviceStatus{status}) {
            return fault(row.title, row.message);
        }
    }
    return fault("> Error", "I really don't know what happened here");
}

}  // namespace

std::optional<Failure> initSockets() {
    if (core::Socket::init()) {
        return {};
    }
    return Failure{fault("Socket init error", "Unable to initialize the WinSock stack correctly"),
                   Cause::noSockets};
}

SendResult sendAll(core::Socket& socket, void const* data, int length, core::CountDownTimer& stall,
                   std::function<bool()> const& mayWait) {
    auto const* const bytes = static_cast<char const*>(data);
    for (int done = 0; done < length;) {
        // Send first and wait only when the socket is full: this saves a wait for each chunk.
        int const accepted = socket.Send(bytes + done, length - done);
        if (accepted > 0) {
            done += accepted;
            stall.Reset(core::CountDownTimer::samePeriod);
            continue;
        }
        if (accepted == 0 || !socket.WouldBlock()) {
            return SendResult::failed;
        }
        socket.CanSend(writabilityPoll);
        if (stall.Expired()) {
            return SendResult::stalled;
        }
        if (!mayWait()) {
            return SendResult::abandoned;
        }
    }
    return SendResult::sent;
}

std::optional<Failure> RecordReader::Receive(core::Socket& socket, UpdateNotification& record,
                                             int ms) {
    core::CountDownTimer wait(static_cast<unsigned long long>(ms));
    while (count_ < recordSize) {
        int const received = socket.Recv(bytes_ + count_, recordSize - count_);
        if (received > 0) {
            count_ += received;
            wait.Reset(core::CountDownTimer::samePeriod);
        } else if (received == 0) {
            return Failure{fault("Connection ended", "The device closed the connection"),
                           Cause::connectionEnded};
        } else if (!socket.WouldBlock()) {
            return Failure{fault("Connection reset", "The device reset the connection"),
                           Cause::connectionReset};
        } else if (!socket.CanRecv(static_cast<int>(wait.RemainingTimeout(0, INT_MAX)))) {
            return Failure{timeoutFault(), Cause::noAnswer};
        }
    }
    std::memcpy(&record, bytes_, recordSize);
    count_ = 0;
    return checkResponse(record);
}

core::Fault timeoutFault() {
    return fault("Connection timeout", "A timeout was reached reading from socket");
}

std::optional<Failure> receiveResponse(core::Socket& socket, UpdateNotification& response, int ms) {
    response = UpdateNotification();
    if (socket.RecvUntil(&response, recordSize, ms) < recordSize) {
        return Failure{timeoutFault(), Cause::noAnswer};
    }
    return checkResponse(response);
}

std::optional<Failure> checkResponse(UpdateNotification& response) {
    std::uint32_t const crc = wireCrc(response);
    response = swapped(response);
    if (response.magic != wireMagic) {
        return Failure{fault("Invalid response", "The server responded onion for garlic"),
                       Cause::notTheProtocol};
    }
    if (response.crc != crc) {
        return Failure{fault("Invalid CRC", "The server response cannot even check itself"),
                       Cause::damagedRecord};
    }
    if (isError(response.code)) {
        return Failure{statusFault(response.value), Cause::deviceError, Phase::start,
                       response.value};
    }
    return {};
}

}  // namespace update
