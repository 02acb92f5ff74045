#include "update/UpdateApplication.h"

#include "sys/platform/Process.h"
#include "update/ConsoleReporter.h"
#include "update/print.h"
#include "update/session/exchange.h"
#include "update/usage.h"

namespace update {

using core::String;

UpdateApplication::UpdateApplication() : core::Application("ravelink") {
    // Closing a window must not leave a device half updated.
    sys::platform::outliveTerminal();
    setVersionModelName("Halvoren");
    setVersionNumber(RAVELINK_VERSION_MAJOR, RAVELINK_VERSION_MINOR);
    setDevStage(core::version::CEDevStage::release);
    setDescription("Ethernet Updater\n");
}

void UpdateApplication::Main(int argc, char const* const* argv) {
    println(getVersionLong(true), true);
    CommandLinePrepare(argc, argv, optionGrammar, errors);
    if (errors.Count() > 0) {
        showErrors();
        showUsage();
        return;
    }
    if (FindOption("h")) {
        showUsage();
        return;
    }
    Run();
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
        return failure->kind == Failure::Kind::timeout ? 1 : -1;
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
        println(errorLine(errors[i]), true);
    }
    println("", true);
}

}  // namespace update
