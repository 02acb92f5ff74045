#include "update/session/Outcome.h"

#include "update/protocol/records.h"

namespace update {

using Kind = Failure::Kind;

namespace {

/// Whether the cause may pass by itself: the device was busy, or the connection disturbed. All
/// others are in the update or in the device, and sending again does not remove them.
bool isTransient(std::uint32_t status) {
    switch (DeviceStatus{status}) {
        case DeviceStatus::SystemBusy:
        case DeviceStatus::InvalidPassword:
        case DeviceStatus::Timeout:
            return true;
        default:
            return false;
    }
}

Kind kindOf(Cause cause) {
    switch (cause) {
        case Cause::badAddress:
        case Cause::fileMissing:
        case Cause::fileUnreadable:
        case Cause::fileEmpty:
        case Cause::fileTooBig:
        case Cause::fileChanged:
            return Kind::input;
        case Cause::noSockets:
            return Kind::system;
        case Cause::connectRefused:
        case Cause::connectTimeout:
        case Cause::unreachable:
        case Cause::connectFailed:
            return Kind::connection;
        case Cause::connectionEnded:
        case Cause::connectionReset:
        case Cause::sendFailed:
            return Kind::lost;
        case Cause::noAnswer:
        case Cause::stalled:
        case Cause::timeUp:
        case Cause::completionTimeout:
            return Kind::timeout;
        case Cause::notTheProtocol:
        case Cause::damagedRecord:
        case Cause::unexpectedRecord:
            return Kind::protocol;
        case Cause::deviceError:
            break;
    }
    return Kind::rejected;
}

template <class Enumeration, std::size_t count>
char const* nameIn(char const* const (&names)[count], Enumeration value) {
    return names[static_cast<std::size_t>(value)];
}

}  // namespace

Failure::Failure(core::Fault const& error, Cause reason, Phase reached,
                 std::optional<std::uint32_t> reported)
    : fault(error), cause(reason), kind(kindOf(reason)), phase(reached), status(reported) {}

Delivered Failure::GetDelivered() const {
    switch (phase) {
        case Phase::start:
        case Phase::connection:
            return Delivered::nothing;
        case Phase::request:
        case Phase::header:
            return Delivered::request;
        case Phase::transfer:
            return Delivered::partOfFile;
        case Phase::trailer:
        case Phase::completion:
            break;
    }
    return Delivered::perhapsAll;
}

Retry Failure::GetRetry() const {
    // Not even an error of the device proves that it has stopped installing.
    if (GetDelivered() == Delivered::perhapsAll) {
        return Retry::checkFirst;
    }
    if (cause == Cause::timeUp) {
        return Retry::never;
    }
    switch (kind) {
        case Kind::connection:
        case Kind::lost:
        case Kind::timeout:
            return Retry::safe;
        case Kind::rejected:
            return status && isTransient(*status) ? Retry::safe : Retry::never;
        case Kind::input:
        case Kind::system:
        case Kind::protocol:
            break;
    }
    return Retry::never;
}

char const* nameOf(Phase phase) {
    static constexpr char const* names[] = {"start",    "connection", "request",   "header",
                                            "transfer", "trailer",    "completion"};
    return nameIn(names, phase);
}

char const* nameOf(Delivered delivered) {
    static constexpr char const* names[] = {"nothing", "request", "partOfFile", "perhapsAll"};
    return nameIn(names, delivered);
}

char const* nameOf(Retry retry) {
    static constexpr char const* names[] = {"never", "safe", "checkFirst"};
    return nameIn(names, retry);
}

char const* nameOf(Failure::Kind kind) {
    static constexpr char const* names[] = {"input",   "system",   "connection", "lost",
                                            "timeout", "protocol", "rejected"};
    return nameIn(names, kind);
}

char const* nameOf(Cause cause) {
    static constexpr char const* names[] = {
        "noSockets",       "badAddress",       "fileMissing",   "fileUnreadable",
        "fileEmpty",       "fileTooBig",       "fileChanged",   "connectRefused",
        "connectTimeout",  "unreachable",      "connectFailed", "noAnswer",
        "connectionEnded", "connectionReset",  "sendFailed",    "stalled",
        "timeUp",          "notTheProtocol",   "damagedRecord", "unexpectedRecord",
        "deviceError",     "completionTimeout"};
    return nameIn(names, cause);
}

}  // namespace update
