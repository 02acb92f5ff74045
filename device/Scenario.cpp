#include "device/Scenario.h"

#include <algorithm>
#include <string>

#include "update/protocol/records.h"

namespace device {

using update::UpdateNotification;

namespace {

std::uint32_t defaultValue(std::uint32_t code, StepContext const& context) {
    switch (code) {
        case UpdateNotification::Accepted:
            return context.token;
        case UpdateNotification::Complete:
            return UpdateNotification::FirmwareRestart;
        default:
            return 0;
    }
}

Notification meant(ScenarioRecord const& record, StepContext const& context) {
    return {record.code, record.value.value_or(defaultValue(record.code, context))};
}

/// The records as they travel, with some bits of magic and CRC turned.
std::string bytesOf(Action const& action, StepContext const& context, std::uint32_t magicFault = 0,
                    std::uint32_t crcFault = 0) {
    std::string bytes;
    for (ScenarioRecord const& record : action.records) {
        UpdateNotification const onWire = DeviceConnection::Encode(
            meant(record, context), update::wireMagic ^ magicFault, crcFault);
        bytes.append(reinterpret_cast<char const*>(&onWire), sizeof onWire);
    }
    return bytes;
}

bool send(DeviceConnection& connection, std::string const& bytes,
          std::size_t most = std::string::npos) {
    return connection.Send(bytes.data(), static_cast<int>(std::min(bytes.size(), most)));
}

bool notify(Action const& action, StepContext const& context, DeviceConnection& connection) {
    return std::all_of(action.records.begin(), action.records.end(), [&](auto const& record) {
        return connection.Notify(meant(record, context));
    });
}

void said(Action const& action, StepContext const& context, DeviceConnection& connection) {
    for (ScenarioRecord const& record : action.records) {
        connection.RecordNotification(meant(record, context));
    }
}

bool together(Action const& action, StepContext const& context, DeviceConnection& connection) {
    bool const sent = send(connection, bytesOf(action, context));
    if (sent) {
        said(action, context, connection);
    }
    return sent;
}

bool drip(Action const& action, StepContext const& context, DeviceConnection& connection) {
    for (char const byte : bytesOf(action, context)) {
        if (!connection.Send(&byte, 1) || !connection.Pause(action.numbers[0])) {
            return false;
        }
    }
    said(action, context, connection);
    return true;
}

bool repeat(Action const& action, StepContext const& context, DeviceConnection& connection) {
    for (std::uint32_t i = 0; i < action.numbers[0]; ++i) {
        if (!notify(action, context, connection) || !connection.Pause(action.numbers[1])) {
            return false;
        }
    }
    return true;
}

bool sendGarbage(std::uint32_t length, DeviceConnection& connection, std::mt19937& random) {
    char piece[1024];
    while (length > 0) {
        std::uint32_t const count = std::min<std::uint32_t>(length, sizeof piece);
        std::generate_n(piece, count, [&] { return static_cast<char>(random()); });
        if (!connection.Send(piece, static_cast<int>(count))) {
            return false;
        }
        length -= count;
    }
    return true;
}

}  // namespace

bool Scenario::OnStep(StepContext const& context, DeviceConnection& connection) {
    if (context.step == Step::connect && receiveBuffer > 0) {
        connection.LimitReceiveBuffer(receiveBuffer);
    }
    auto const found = steps.find(context.step);
    bool const refuses = context.defaultReply && update::isError(context.defaultReply->code);
    if (found == steps.end() || refuses) {
        return Behaviour::OnStep(context, connection);
    }
    // A generator for each step, so that what one step takes of it changes no other.
    std::mt19937 random(seed + static_cast<std::uint32_t>(context.step));
    return std::all_of(found->second.begin(), found->second.end(), [&](Action const& action) {
        bool const due = context.step != Step::data || (context.bytesBefore < action.after &&
                                                        action.after <= context.bytesReceived);
        return !due || Execute(action, context, connection, random);
    });
}

bool Scenario::Execute(Action const& action, StepContext const& context,
                       DeviceConnection& connection, std::mt19937& random) const {
    std::uint32_t const turnedBit = 1;
    switch (action.type) {
        case ActionType::notify:
            return notify(action, context, connection);
        case ActionType::together:
            return together(action, context, connection);
        case ActionType::drip:
            return drip(action, context, connection);
        case ActionType::cut:
            return send(connection, bytesOf(action, context), action.numbers[0]);
        case ActionType::wrongMagic:
            return send(connection, bytesOf(action, context, turnedBit, 0));
        case ActionType::wrongCrc:
            return send(connection, bytesOf(action, context, 0, turnedBit));
        case ActionType::garbage:
            return sendGarbage(action.numbers[0], connection, random);
        case ActionType::repeat:
            return repeat(action, context, connection);
        case ActionType::flood:
            while (notify(action, context, connection)) {
            }
            return false;
        case ActionType::wait:
            return connection.Pause(action.numbers[0]);
        case ActionType::silent:
            connection.Drain();
            return false;
        case ActionType::slow:
            connection.SlowDown(static_cast<int>(action.numbers[0]), action.numbers[1]);
            return true;
        case ActionType::close:
            return false;
        case ActionType::reset:
            connection.Reset();
            return false;
    }
    return false;
}

}  // namespace device
