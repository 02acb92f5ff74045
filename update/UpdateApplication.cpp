#include "update/UpdateApplication.h"

#include "core/console/lines.h"
#include "sys/platform/Process.h"
#include "update/ConsoleReporter.h"
#include "update/print.h"
#include "update/session/exchange.h"

namespace update {

using core::String;

namespace {

/// -t and -i have no effect and are not on the usage screen: scripts in the field still pass them.
char const optionGrammar[] = "h|help=0>o|origin=1>a|address=1>t|type=1>i|id=1";

}  // namespace

UpdateApplication::UpdateApplication()
    : Program({"ravelink", "Ethernet Updater\n", optionGrammar, showUsage}) {
    // Closing a window must not leave a device half updated.
    sys::platform::ignoreTerminalClose();
}

void UpdateApplication::ShowUsageErrors(std::vector<core::Fault> const& faults) {
    for (core::Fault const& fault : faults) {
        AddError(fault);
    }
    showErrors();
    showUsage();
}

bool UpdateApplication::Init() {
    if (auto const failure = initSockets()) {
        return QuitWithFailure(*failure);
    }
    Task task;
    bool const complete = ReadTask(task) && RunSession(task);
    core::Socket::done();
    return complete;
}

bool UpdateApplication::ReadTask(Task& task) {
    if (!GetOptionValues("o", task.path)) {
        return QuitWithError("Origin file name missing", "Please provide the correct -o option",
                             true);
    }
    if (auto const failure = checkFile(task.path)) {
        return QuitWithFailure(*failure);
    }
    String address;
    if (!GetOptionValues("a", address)) {
        return QuitWithError("Sensor IP address missing", "Please provide the correct -a option",
                             true);
    }
    auto const failure = readDevice(address, task.device);
    return !failure || QuitWithFailure(*failure);
}

bool UpdateApplication::RunSession(Task const& task) {
    ConsoleReporter reporter(errors);
    Outcome const outcome = Session(task, reporter, timeouts).Run();
    if (outcome.failure) {
        return QuitWithFailure(*outcome.failure);
    }
    RequestTermination(normalRequest);
    return true;
}

int UpdateApplication::GetResponse(core::Socket& socket, UpdateNotification& response, int ms,
                                   bool) {
    if (auto const failure = receiveResponse(socket, response, ms)) {
        AddError(failure->fault);
        return failure->cause == Cause::noAnswer ? 1 : -1;
    }
    ConsoleReporter(errors).OnNotification(response);
    return 0;
}

bool UpdateApplication::AdjustAndCheckResponse(UpdateNotification& response) {
    auto const failure = checkResponse(response);
    if (failure) {
        AddError(failure->fault);
    }
    return !failure;
}

bool UpdateApplication::QuitWithError(String const& title, String const& message, bool show) {
    if (title.GetLength() > 0) {
        errors.Add(title, message);
    }
    RequestTermination(normalRequest);
    if (show) {
        showErrors();
    }
    return false;
}

bool UpdateApplication::QuitWithFailure(Failure const& failure) {
    return QuitWithError(failure.fault.title, failure.fault.message, true);
}

void UpdateApplication::AddError(core::Fault const& fault) {
    errors.Add(fault.title, fault.message);
}

void UpdateApplication::showErrors() const {
    for (int i = 0; i < errors.Count(); ++i) {
        // Every "=", even in a message: scripts that read the output expect it.
        core::printLine(core::message("*** %1", errors[i].Replace("=", ": ")));
    }
    core::printLine("");
}

}  // namespace update
