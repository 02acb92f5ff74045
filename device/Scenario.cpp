#include "device/Scenario.h"

#include <algorithm>

#include "core/text/Buffer.h"
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

Notification notificationOf(ScenarioRecord const& record, StepContext const& context) {
    return {record.code, record.value.value_or(defaultValue(record.code, context))};
}

/// Returns the records in wire order, with the bits of magicFault and crcFault flipped.
core::Buffer encode(Action const& action, StepContext const& context, std::uint32_t magicFault = 0,
                    std::uint32_t crcFault = 0) {
    core::Buffer bytes;
    for (ScenarioRecord const& record : action.records) {
        UpdateNotification const encoded = DeviceConnection::Encode(
            notificationOf(record, context), update::wireMagic ^ magicFault, crcFault);
        bytes.Append(&encoded, update::recordSize);
    }
    return bytes;
}

bool send(DeviceConnection& connection, core::Buffer const& bytes) {
    return connection.Send(bytes.GetData(), bytes.GetSize());
}

bool notify(Action const& action, StepContext const& context, DeviceConnection& connection) {
    return std::all_of(action.records.begin(), action.records.end(), [&](auto const& record) {
        return connection.Notify(notificationOf(record, context));
    });
}

void recordNotifications(Action const& action, StepContext const& context,
                         DeviceConnection& connection) {
    for (ScenarioRecord const& record : action.records) {
        connection.RecordNotification(notificationOf(record, context));
    }
}

bool together(Action const& action, StepContext const& context, DeviceConnection& connection) {
    bool const isSent = send(connection, encode(action, context));
    if (isSent) {
        recordNotifications(action, context, connection);
    }
    return isSent;
}

bool drip(Action const& action, StepContext const& context, DeviceConnection& connection) {
    core::Buffer const bytes = encode(action, context);
    for (int i = 0; i < bytes.GetSize(); ++i) {
        if (!connection.Send(bytes.GetData() + i, 1) || !connection.Pause(action.numbers[0])) {
            return false;
        }
    }
    recordNotifications(action, context, connection);
    return true;
}

/// Sends the first bytes of the record.
bool cut(Action const& action, StepContext const& context, DeviceConnection& connection) {
    core::Buffer bytes = encode(action, context);
    bytes.SetSize(static_cast<int>(action.numbers[0]));
    return send(connection, bytes);
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
    char chunk[1024];
    while (length > 0) {
        std::uint32_t const count = std::min<std::uint32_t>(length, sizeof chunk);
        std::generate_n(chunk, count, [&] { return static_cast<char>(random()); });
        if (!connection.Send(chunk, static_cast<int>(count))) {
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
    bool const isRejecting = context.step != Step::busy && context.defaultReply &&
                             update::isError(context.defaultReply->code);
    if (found == steps.end() || isRejecting) {
        return Behaviour::OnStep(context, connection);
    }
    // One generator per step, so that the steps do not influence each other.
    std::mt19937 random(seed + static_cast<std::uint32_t>(context.step));
    return std::all_of(found->second.begin(), found->second.end(), [&](Action const& action) {
        bool const isDue = context.step != Step::data || (context.bytesBefore < action.after &&
                                                          action.after <= context.bytesReceived);
        return !isDue || Execute(action, context, connection, random);
    });
}

bool Scenario::Execute(Action const& action, StepContext const& context,
                       DeviceConnection& connection, std::mt19937& random) const {
    std::uint32_t const flippedBit = 1;
    switch (action.type) {
        case ActionType::notify:
            return notify(action, context, connection);
        case ActionType::together:
            return together(action, context, connection);
        case ActionType::drip:
            return drip(action, context, connection);
        case ActionType::cut:
            return cut(action, context, connection);
        case ActionType::wrongMagic:
            return send(connection, encode(action, context, flippedBit, 0));
        case ActionType::wrongCrc:
            return send(connection, encode(action, context, 0, flippedBit));
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
