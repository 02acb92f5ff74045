#include "core/crc/crc32.h"
#include "update/UpdateApplication.h"
#include "update/print.h"
#include "update/protocol/records.h"

namespace update {

namespace {

struct CodeLine {
    std::uint32_t code;
    char const* line;
};

constexpr CodeLine codeLines[] = {
    {UpdateNotification::Accepted, "- The device has accepted our request."},
    {UpdateNotification::Received, "- The device has received the update file."},
    {UpdateNotification::Checked, "- The device has checked the update file."},
    {UpdateNotification::Processing, "- The device is processing the update file."},
    {UpdateNotification::Complete, "- The update process is complete."},
};

constexpr CodeLine restartLines[] = {
    {UpdateNotification::FirmwareRestart, "  The firmware is restarting."},
    {UpdateNotification::HardwareRestart, "  The hardware is restarting."},
    {UpdateNotification::PowerCycle, "  Please power off the device and then power on again."},
};

template <std::size_t count>
void printLineOf(CodeLine const (&lines)[count], std::uint32_t code) {
    for (CodeLine const& row : lines) {
        if (row.code == code) {
            println(row.line, true);
        }
    }
}

void printProgressOf(UpdateNotification const& response) {
    printLineOf(codeLines, response.code);
    if (response.code == UpdateNotification::Complete) {
        printLineOf(restartLines, response.value);
    }
}

struct StatusText {
    DeviceStatus status;
    char const* error;  ///< title "=" message
};

/// The device's own words, grammar and humour included: support knows them by heart.
constexpr StatusText statusTexts[] = {
    {DeviceStatus::InvalidMagic, "> Invalid magic number=Error sending the acknowledge data"},
    {DeviceStatus::InvalidCrc, "> Invalid CRC=Error sending the acknowledge data"},
    {DeviceStatus::InvalidDataSize, "> Invalid data size=Error sending the acknowledge data"},
    {DeviceStatus::InvalidMagicComplement,
     "> Invalid ~magic number=Error sending the acknowledge data"},
    {DeviceStatus::DataSizeTooBig,
     "> Invalid data size (too big)=Error sending the acknowledge data"},
    {DeviceStatus::SystemBusy,
     "> System is busy=The system is now busy and the update procedure must be postponed"},
    {DeviceStatus::InvalidPassword, "> Invalid password=Error sending the acknowledge data"},
    {DeviceStatus::InvalidVersion, "> Invalid version=Error sending the acknowledge data"},
    {DeviceStatus::Timeout, "> Timeout=Maybe I am too lazy"},
    {DeviceStatus::ExchangeFailed, "> Unable to exchange information=This should not happen"},
    {DeviceStatus::ReadWriteError, "> Read/write error=The system received an I/O error"},
    {DeviceStatus::WrongFileCrc, "> Wrong file CRC=Please do your math"},
    {DeviceStatus::Interrupted, "> Interrupted=The update procedure was interrupted"},
    {DeviceStatus::GhostError, "> Ghost error=Please call the Ghostbusters!"},
    {DeviceStatus::InvalidTarget, "> Invalid target=This update is not applicable to this device"},
};

void addStatusError(core::StringArray& errors, std::uint32_t status) {
    for (StatusText const& row : statusTexts) {
        if (static_cast<std::uint32_t>(row.status) == status) {
            errors.Add(row.error);
            return;
        }
    }
    errors.Add("> Error", "I really don't know what happened here");
}

}  // namespace

int UpdateApplication::GetResponse(core::Socket& socket, UpdateNotification& response, int ms,
                                   bool) {
    response = UpdateNotification();
    if (socket.RecvUntil(&response, recordSize, ms) < recordSize) {
        errors.Add("Connection timeout", "A timeout was reached reading from socket");
        return 1;
    }
    if (!AdjustAndCheckResponse(response)) {
        return -1;
    }
    printProgressOf(response);
    return 0;
}

bool UpdateApplication::AdjustAndCheckResponse(UpdateNotification& response) {
    std::uint32_t const crc = wireCrc(response);
    response = swapped(response);
    if (response.magic != wireMagic) {
        errors.Add("Invalid response", "The server responded onion for garlic");
        return false;
    }
    if (response.crc != crc) {
        errors.Add("Invalid CRC", "The server response cannot even check itself");
        return false;
    }
    if (isError(response.code)) {
        addStatusError(errors, response.value);
        return false;
    }
    return true;
}

}  // namespace update
