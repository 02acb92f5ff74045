#include "device/Scenario.h"

#include <algorithm>
#include <string>

#include "update/protocol/records.h"

namespace device {

using update::UpdateNotification;

namespace {

std::uint32_t honestValue(std::uint32_t code, Moment const& moment) {
    switch (code) {
        case UpdateNotification::Accepted:
            return moment.token;
        case UpdateNotification::Complete:
            return UpdateNotification::FirmwareRestart;
        default:
            return 0;
    }
}

Notification meant(ScenarioRecord const& record, Moment const& moment) {
    return {record.code, record.value.value_or(honestValue(record.code, moment))};
}

/// The records as they travel, with some bits of magic and CRC turned.
std::string bytesOf(Action const& action, Moment const& moment, std::uint32_t magicFault = 0,
                    std::uint32_t crcFault = 0) {
    std::string bytes;
    for (ScenarioRecord const& record : action.records) {
        UpdateNotification const onWire =
            Wire::Encode(meant(record, moment), update::wireMagic ^ magicFault, crcFault);
        bytes.append(reinterpret_cast<char const*>(&onWire), sizeof onWire);
    }
    return bytes;
}

bool send(Wire& wire, std::string const& bytes, std::size_t most = std::string::npos) {
    return wire.Send(bytes.data(), static_cast<int>(std::min(bytes.size(), most)));
}

bool notify(Action const& action, Moment const& moment, Wire& wire) {
    return std::all_of(action.records.begin(), action.records.end(),
                       [&](auto const& record) { return wire.Notify(meant(record, moment)); });
}

void said(Action const& action, Moment const& moment, Wire& wire) {
    for (ScenarioRecord const& record : action.records) {
        wire.Said(meant(record, moment));
    }
}

bool together(Action const& action, Moment const& moment, Wire& wire) {
    bool const sent = send(wire, bytesOf(action, moment));
    if (sent) {
        said(action, moment, wire);
    }
    return sent;
}

bool drip(Action const& action, Moment const& moment, Wire& wire) {
    for (char const byte : bytesOf(action, moment)) {
        if (!wire.Send(&byte, 1) || !wire.Pause(action.numbers[0])) {
            return false;
        }
    }
    said(action, moment, wire);
    return true;
}

bool repeat(Action const& action, Moment const& moment, Wire& wire) {
    for (std::uint32_t i = 0; i < action.numbers[0]; ++i) {
        if (!notify(action, moment, wire) || !wire.Pause(action.numbers[1])) {
            return false;
        }
    }
    return true;
}

bool sendGarbage(std::uint32_t length, Wire& wire, std::mt19937& random) {
    char piece[1024];
    while (length > 0) {
        std::uint32_t const count = std::min<std::uint32_t>(length, sizeof piece);
        std::generate_n(piece, count, [&] { return static_cast<char>(random()); });
        if (!wire.Send(piece, static_cast<int>(count))) {
            return false;
        }
        length -= count;
    }
    return true;
}

}  // namespace

bool Scenario::Act(Moment const& moment, Wire& wire) {
    if (moment.step == Step::Connect && receiveBuffer > 0) {
        wire.LimitReceiveBuffer(receiveBuffer);
    }
    auto const found = steps.find(moment.step);
    bool const refuses = moment.answer && update::isError(moment.answer->code);
    if (found == steps.end() || refuses) {
        return Behaviour::Act(moment, wire);
    }
    // A generator for each step, so that what one step takes of it changes no other.
    std::mt19937 random(seed + static_cast<std::uint32_t>(moment.step));
    return std::all_of(found->second.begin(), found->second.end(), [&](Action const& action) {
        bool const due = moment.step != Step::Data ||
                         (moment.before < action.after && action.after <= moment.bytes);
        return !due || Do(action, moment, wire, random);
    });
}

bool Scenario::Do(Action const& action, Moment const& moment, Wire& wire,
                  std::mt19937& random) const {
    std::uint32_t const turnedBit = 1;
    switch (action.verb) {
        case Verb::notify:
            return notify(action, moment, wire);
        case Verb::together:
            return together(action, moment, wire);
        case Verb::drip:
            return drip(action, moment, wire);
        case Verb::cut:
            return send(wire, bytesOf(action, moment), action.numbers[0]);
        case Verb::wrongMagic:
            return send(wire, bytesOf(action, moment, turnedBit, 0));
        case Verb::wrongCrc:
            return send(wire, bytesOf(action, moment, 0, turnedBit));
        case Verb::garbage:
            return sendGarbage(action.numbers[0], wire, random);
        case Verb::repeat:
            return repeat(action, moment, wire);
        case Verb::flood:
            while (notify(action, moment, wire)) {
            }
            return false;
        case Verb::wait:
            return wire.Pause(action.numbers[0]);
        case Verb::silent:
            wire.Drain();
            return false;
        case Verb::slow:
            wire.SlowDown(static_cast<int>(action.numbers[0]), action.numbers[1]);
            return true;
        case Verb::close:
            return false;
        case Verb::reset:
            wire.Reset();
            return false;
    }
    return false;
}

}  // namespace device
