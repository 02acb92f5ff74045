#include "update/protocol/names.h"

#include "core/text/String.h"
#include "update/protocol/records.h"

namespace update {

namespace {

struct Named {
    std::uint32_t number;
    char const* name;
};

constexpr Named codes[] = {
    {UpdateNotification::Accepted, "Accepted"}, {UpdateNotification::Received, "Received"},
    {UpdateNotification::Checked, "Checked"},   {UpdateNotification::Processing, "Processing"},
    {UpdateNotification::Complete, "Complete"}, {UpdateNotification::Error, "Error"},
    {UpdateNotification::ErrorAlt, "ErrorAlt"},
};

constexpr Named status(DeviceStatus status, char const* name) {
    return {static_cast<std::uint32_t>(status), name};
}

constexpr Named restarts[] = {
    {UpdateNotification::FirmwareRestart, "FirmwareRestart"},
    {UpdateNotification::HardwareRestart, "HardwareRestart"},
    {UpdateNotification::PowerCycle, "PowerCycle"},
};

constexpr Named statuses[] = {
    status(DeviceStatus::InvalidMagic, "InvalidMagic"),
    status(DeviceStatus::InvalidCrc, "InvalidCrc"),
    status(DeviceStatus::InvalidDataSize, "InvalidDataSize"),
    status(DeviceStatus::InvalidMagicComplement, "InvalidMagicComplement"),
    status(DeviceStatus::DataSizeTooBig, "DataSizeTooBig"),
    status(DeviceStatus::SystemBusy, "SystemBusy"),
    status(DeviceStatus::InvalidPassword, "InvalidPassword"),
    status(DeviceStatus::InvalidVersion, "InvalidVersion"),
    status(DeviceStatus::Timeout, "Timeout"),
    status(DeviceStatus::ExchangeFailed, "ExchangeFailed"),
    status(DeviceStatus::ReadWriteError, "ReadWriteError"),
    status(DeviceStatus::WrongFileCrc, "WrongFileCrc"),
    status(DeviceStatus::Interrupted, "Interrupted"),
    status(DeviceStatus::GhostError, "GhostError"),
    status(DeviceStatus::InvalidTarget, "InvalidTarget"),
};

template <std::size_t count>
std::optional<std::uint32_t> find(Named const (&rows)[count], std::string_view name) {
    core::String const text(name);
    for (Named const& row : rows) {
        if (text.CompareIC(row.name) == 0) {
            return row.number;
        }
    }
    return {};
}

template <std::size_t count>
char const* nameIn(Named const (&rows)[count], std::uint32_t number) {
    for (Named const& row : rows) {
        if (row.number == number) {
            return row.name;
        }
    }
    return "Unknown";
}

}  // namespace

char const* nameOfCode(std::uint32_t code) {
    return nameIn(codes, code);
}

char const* nameOfStatus(std::uint32_t status) {
    return nameIn(statuses, status);
}

std::optional<std::uint32_t> codeOfName(std::string_view name) {
    return find(codes, name);
}

std::optional<std::uint32_t> valueOfName(std::string_view name) {
    auto const restart = find(restarts, name);
    return restart ? restart : find(statuses, name);
}

}  // namespace update
