#include "job/verdict.h"

#include <string_view>

#include "update/protocol/records.h"

namespace job {

using core::message;
using core::String;
using update::DeviceStatus;
using update::Phase;

namespace {

/// What an error before the trailer means: the class decides about the exit status.
enum class CauseClass { computer, commandLine, input, byStep };

struct CauseRow {
    std::string_view cause;
    CauseClass causeClass;
    char const* advice;
};

char const adviceOnConnection[] = "Check the address, the cable and the power of the device.";
char const adviceToRepeat[] = "Check the cable and the device's own display; then update again.";
char const adviceOnService[] = "Check the address and the port; wait some minutes and try again.";
char const adviceOnFile[] = "Copy the file to a local directory where it does not change.";
char const adviceAfterTrailer[] =
    "Do not switch the device off. See whether it runs as usual before you update it again.";

constexpr CauseRow causes[] = {
    {"noSockets", CauseClass::computer, "Check the network configuration of the computer."},
    {"noMemory", CauseClass::computer, "Close other programs and update again."},
    {"internal", CauseClass::computer, "Close other programs and update again."},
    {"invalidOption", CauseClass::commandLine,
     "Compare the command line with ravelink-job --help."},
    {"wrongArguments", CauseClass::commandLine,
     "Compare the command line with ravelink-job --help."},
    {"missingOption", CauseClass::commandLine, "Add the missing option."},
    {"badNumber", CauseClass::commandLine, "Give a number in the range of the option."},
    {"badAddress", CauseClass::commandLine, "Give an address such as 10.0.0.7:3007."},
    {"fileMissing", CauseClass::input, "Check the path, and that its drive is available."},
    {"fileUnreadable", CauseClass::input, adviceOnFile},
    {"fileEmpty", CauseClass::input, "Use the right file."},
    {"fileTooBig", CauseClass::input, "Use the right file."},
    {"fileChanged", CauseClass::input, adviceOnFile},
    {"archiveUnsound", CauseClass::input, "Use an archive that ravelink-pack -c accepts."},
    {"logUnwritable", CauseClass::input, "Check the directory, permissions and space of the log."},
    {"logInUse", CauseClass::input, "Wait for the other run, or use a log for each device."},
    {"nameUnknown", CauseClass::byStep, "Check the name of the device."},
    {"nameAmbiguous", CauseClass::byStep, "Use one of the addresses instead of the name."},
    {"nameTemporary", CauseClass::byStep, "Check the name server, and try again."},
    {"connectRefused", CauseClass::byStep, adviceOnConnection},
    {"connectTimeout", CauseClass::byStep, adviceOnConnection},
    {"unreachable", CauseClass::byStep, adviceOnConnection},
    {"connectFailed", CauseClass::byStep, adviceOnConnection},
    {"noAnswer", CauseClass::byStep, adviceOnService},
    {"notTheProtocol", CauseClass::byStep, adviceOnService},
    {"unexpectedRecord", CauseClass::byStep, adviceOnService},
    {"timeUp", CauseClass::byStep, "Allow more time, and update again."},
    {"interrupted", CauseClass::byStep, "Update again."},
};

/// For all other causes.
constexpr CauseRow otherCause = {"", CauseClass::byStep, adviceToRepeat};

CauseRow const& rowOf(std::string_view cause) {
    for (CauseRow const& row : causes) {
        if (row.cause == cause) {
            return row;
        }
    }
    return otherCause;
}

char const* adviceOnStatus(DeviceStatus status) {
    switch (status) {
        case DeviceStatus::SystemBusy:
            return "Wait some minutes and try again. Check that no other updater is running.";
        case DeviceStatus::InvalidTarget:
        case DeviceStatus::InvalidVersion:
            return "Use the file for this device.";
        case DeviceStatus::InvalidMagic:
        case DeviceStatus::InvalidMagicComplement:
            return "Check the address and the port.";
        case DeviceStatus::InvalidDataSize:
        case DeviceStatus::DataSizeTooBig:
        case DeviceStatus::WrongFileCrc:
            return "Check the file with ravelink-pack -c.";
        default:
            return "Update again; if the error recurs, tell support.";
    }
}

/// Whether the device may be serving another updater.
bool servesAnother(Error const& error) {
    return error.step == Step::request &&
           (error.cause == std::string_view("unexpectedRecord") ||
            (error.status && DeviceStatus{*error.status} == DeviceStatus::SystemBusy));
}

char const* powerOffAfter(Error const& error) {
    if (servesAnother(error)) {
        return "no";
    }
    return error.step == Step::header || error.step == Step::transfer ? "avoid" : "yes";
}

Verdict verdictBeforeTrailer(Error const& error) {
    CauseRow const& row = rowOf(error.cause);
    char const* const powerOff = powerOffAfter(error);
    char const* const advice =
        error.status ? adviceOnStatus(DeviceStatus{*error.status}) : row.advice;
    switch (row.causeClass) {
        case CauseClass::computer:
            return {"internal", 1, powerOff, advice};
        case CauseClass::commandLine:
            return {"usage", 2, powerOff, advice};
        case CauseClass::input:
            return {"file", 10, powerOff, advice};
        case CauseClass::byStep:
            break;
    }
    if (error.step <= Step::connection) {
        return {"notConnected", 11, powerOff, advice};
    }
    return error.step == Step::transfer ? Verdict{"brokenOff", 13, powerOff, advice}
                                        : Verdict{"refused", 12, powerOff, advice};
}

Step stepOf(Phase phase) {
    switch (phase) {
        case Phase::start:
            return Step::file;
        case Phase::connection:
            return Step::connection;
        case Phase::request:
            return Step::request;
        case Phase::header:
            return Step::header;
        case Phase::transfer:
            return Step::transfer;
        case Phase::trailer:
            return Step::trailer;
        case Phase::completion:
            break;
    }
    return Step::waiting;
}

}  // namespace

char const* nameOf(Step step) {
    static constexpr char const* names[] = {"commandLine", "file",    "connection",
                                            "request",     "header",  "transfer",
                                            "trailer",     "waiting", "done"};
    return names[static_cast<int>(step)];
}

Error errorOf(update::Failure const& failure) {
    return {update::nameOf(failure.cause), failure.fault, stepOf(failure.phase), failure.status,
            failure.GetRetry() == update::Retry::safe};
}

Verdict verdictOf(Error const* error, bool trailerBegun, std::uint32_t restart, Signal signal) {
    if (error == nullptr) {
        return restart == update::UpdateNotification::PowerCycle
                   ? Verdict{"updated", 0, "must", "Switch the device off and on again."}
                   : Verdict{"updated", 0, "no", "Let the device restart."};
    }
    Verdict verdict{"unknown", 15, "no", adviceAfterTrailer};
    if (!trailerBegun) {
        verdict = verdictBeforeTrailer(*error);
        verdict.isTransient = error->isTransient;
    } else if (error->status) {
        verdict.outcome = "deviceFailed";
        verdict.exitStatus = 14;
    }
    if (signal != Signal::none) {
        verdict.outcome = trailerBegun ? "unknown" : "interrupted";
        verdict.exitStatus = 128 + static_cast<int>(signal);
    }
    return verdict;
}

String resultLine(Verdict const& verdict, Error const* error) {
    static constexpr char const* places[] = {
        " on the command line", " at the file",       " at the connection",
        " at the request",      " at the header",     " in the transfer",
        " at the trailer",      " after the trailer", " at the end"};
    bool const isBeforeTrailer = error != nullptr && error->step < Step::trailer;
    std::string_view const powerOff = isBeforeTrailer ? verdict.powerOff : "";
    return message("Result: %1 (exit %2)%3%4%5. %6", verdict.outcome, verdict.exitStatus,
                   error != nullptr ? places[static_cast<int>(error->step)] : "",
                   verdict.isTransient ? "; it may be tried again" : "",
                   powerOff == "no"      ? "; do not switch the device off"
                   : powerOff == "avoid" ? "; leave the device on"
                                         : "",
                   verdict.advice);
}

}  // namespace job
