#include "program/Program.h"

#include <algorithm>
#include <new>

#include "core/console/lines.h"
#include "core/text/StringArray.h"
#include "sys/platform/Process.h"

namespace program {

using core::Fault;
using core::printLine;

Program::Program(Identity const& identity) : core::Application(identity.name), identity_(identity) {
    setVersionModelName("Halvoren");
    setVersionNumber(RAVELINK_VERSION_MAJOR, RAVELINK_VERSION_MINOR);
    setDevStage(core::version::CEDevStage::release);
    setDescription(identity.description);
}

void Program::Main(int argc, char const* const* argv) {
    core::StringArray entries;
    CommandLinePrepare(argc, argv, OptionGrammar(argc, argv), entries);
    std::vector<Fault> errors = core::faultsFromEntries(entries);
    bool const isHelp = FindOption("h");
    bool const runs = !isHelp && !FindOption("version");
    if (errors.empty() && runs) {
        CheckOptions(errors);
    }
    if (HasBanner()) {
        printLine(getVersionLong(true));
    }
    if (!errors.empty()) {
        RaiseStatus(ExitStatus::wrongUsage);
        ShowUsageErrors(errors);
    } else if (isHelp) {
        identity_.showUsage();
    } else if (!runs) {
        return;
    } else if (identity_.interruption == Interruption::endProcess) {
        Run();
    } else {
        sys::platform::InterruptHandler handler([] { RequestTermination(normalRequest); });
        Run();
        if (identity_.interruption == Interruption::terminateAndEndProcess) {
            handler.EndIfInterrupted();
        }
    }
}

core::String Program::OptionGrammar(int /*argc*/, char const* const* /*argv*/) const {
    return identity_.optionGrammar;
}

void Program::CheckOptions(std::vector<Fault>& /*errors*/) {}

void Program::ShowUsageErrors(std::vector<Fault> const& errors) {
    printErrors(errors);
    printLine("");
    identity_.showUsage();
}

void Program::RaiseStatus(ExitStatus status) {
    status_ = std::max(status_, status);
}

bool Program::Quit(std::vector<Fault> const& errors, ExitStatus status) {
    printErrors(errors);
    RaiseStatus(status);
    RequestTermination(normalRequest);
    return false;
}

void printErrors(std::vector<Fault> const& errors) {
    for (core::String const& line : core::faultLines(errors)) {
        printLine(line);
    }
}

Fault errorFromException(std::exception const& exception) {
    if (dynamic_cast<std::bad_alloc const*>(&exception) != nullptr) {
        return core::fault("Out of memory", "The system has no more memory for the program");
    }
    return core::fault("System failure", "%1", exception.what());
}

}  // namespace program
