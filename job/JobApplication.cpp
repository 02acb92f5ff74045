#include "job/JobApplication.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <optional>
#include <utility>

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "core/text/StringArray.h"
#include "core/text/parseNumber.h"
#include "program/usage.h"
#include "sys/platform/Process.h"

namespace job {

using core::fault;
using core::String;

namespace {

char const optionGrammar[] =
    "h|help=0>v|version=0>o|origin=1>a|address=1>n|name=1>c|check=0>r|retry=1>w|wait=1>"
    "k|connect-timeout=1>m|max-time=1>j|json=0>l|log=1>q|quiet=0";

int const mostRetries = 100;
int const longestWait = 300;              ///< seconds
int const longestConnectTimeout = 600;    ///< seconds
int const longestRun = 7 * 24 * 60 * 60;  ///< seconds

void showUsage() {
    using namespace program::usage;
    core::printLine(heading("Usage:"));
    print({{core::message("\t%1%2%3 FILE%4 HOST[:PORT]", literal("ravelink-job"),
                          optional(" [OPTIONS]"), literal(" -o"), literal(" -a"))},
           {heading("where:")},
           {"-o, --origin *", "The update to send"},
           {"-a, --address *", "The device: an IPv4 address or host name, and a port (3007)"},
           {heading("and options:")},
           {"-n, --name", "Name of the device in all lines (the address)"},
           {"-c, --check", "Send only a valid update archive"},
           {"-r, --retry", "Repeat after a transient failure, up to N times (0)"},
           {"-w, --wait", "Pause before the first repetition in seconds, then doubled (10)"},
           {"-k, --connect-timeout", "Limit an attempt to connect, in seconds (10)"},
           {"-m, --max-time", "Limit the run until the trailer, in seconds (0: unlimited)"},
           {"-j, --json", "Print only JSON lines"},
           {"-l, --log", "Append the JSON lines to a file"},
           {"-q, --quiet", "Print only errors"},
           {"-v, --version", "Print the version"},
           {"-h, --help", "Show this screen"}});
}

// What an interruption ends.
std::atomic<JobRun*> running = nullptr;
sys::platform::InterruptHandler* handler = nullptr;

void interrupt() {
    running.wait(nullptr);
    Signal const signal = handler->Received() == sys::platform::Interruption::user
                              ? Signal::interrupt
                              : Signal::terminate;
    if (auto const exitStatus = running.load()->Interrupt(signal)) {
        handler->EndAtOnce(*exitStatus);
    }
}

Error usageError(char const* cause, core::Fault const& fault) {
    return {cause, fault, Step::commandLine};
}

/// The options without a value, of which the grammar allows any number.
constexpr std::pair<char const*, char const*> flags[] = {
    {"-c", "--check"}, {"-j", "--json"}, {"-q", "--quiet"}};

/// Whether a word of the command line is the option, with or without a wrong value.
int countOf(std::pair<char const*, char const*> const& flag, int argc, char const* const* argv) {
    return static_cast<int>(
        std::count_if(argv + 1, argv + std::max(argc, 1), [&](char const* word) {
            return String(word).CompareIC(flag.first) == 0 ||
                   String(word).CompareIC(flag.second) == 0;
        }));
}

/// Adds the errors that the grammar does not find: it drops the words before the first option and
/// allows to repeat a flag. A script that does either is mistaken.
void checkWords(int argc, char const* const* argv, std::vector<Error>& errors) {
    for (int i = 1; i < argc && argv[i][0] != '-'; ++i) {
        errors.push_back(
            usageError("wrongArguments",
                       fault("Invalid arguments", "\"%1\" follows no option", String(argv[i]))));
    }
    for (auto const& flag : flags) {
        if (countOf(flag, argc, argv) > 1) {
            errors.push_back(usageError(
                "wrongArguments", fault("Invalid arguments", "%1 appears twice", flag.first)));
        }
    }
}

}  // namespace

JobApplication::JobApplication()
    : Program({"ravelink-job", "Ethernet Updater for Scripts\n", optionGrammar, showUsage}) {
    // A lost terminal must not leave a device half updated.
    sys::platform::ignoreTerminalClose();
    core::Console::setPlain(true);
}

void JobApplication::Main(int argc, char const* const* argv) {
    JobOptions options;
    std::vector<Error> const errors = ReadOptions(argc, argv, options);
    if (errors.empty() && (FindOption("h") || FindOption("v"))) {
        core::printLine(getVersionLong(true));
        if (FindOption("h")) {
            showUsage();
        }
        return;
    }
    if (!errors.empty()) {
        JobRun run(options);
        exitStatus_ = run.RejectCommandLine(errors);
        return;
    }
    RunJob(options);
}

std::vector<Error> JobApplication::ReadOptions(int argc, char const* const* argv,
                                               JobOptions& options) {
    std::vector<Error> errors;
    core::StringArray entries;
    CommandLinePrepare(argc, argv, optionGrammar, entries);
    for (core::Fault const& fault : core::faultsFromEntries(entries)) {
        bool const isInvalid = fault.title.CompareIC("Invalid option") == 0;
        errors.push_back(usageError(isInvalid ? "invalidOption" : "wrongArguments", fault));
    }
    // The grammar does not store an option that has the wrong number of values.
    bool const isComplete = errors.empty();
    checkWords(argc, argv, errors);
    options.checksArchive = FindOption("c");
    // Also for a script that gives it a value.
    options.printsJson = countOf(flags[1], argc, argv) > 0;
    options.isQuiet = FindOption("q");
    GetOptionValues("l", options.log);
    GetOptionValues("o", options.origin);
    GetOptionValues("a", options.address);
    if (!GetOptionValues("n", options.name)) {
        options.name = options.address;
    }
    ReadNumber("r", 0, mostRetries, options.retries, errors);
    ReadNumber("w", 0, longestWait, options.wait, errors);
    ReadNumber("k", 1, longestConnectTimeout, options.connectTimeout, errors);
    ReadNumber("m", 0, longestRun, options.maxTime, errors);
    if (FindOption("h") || FindOption("v")) {
        return errors;
    }
    if (isComplete && !FindOption("o")) {
        errors.push_back(usageError("missingOption",
                                    fault("Option missing", "-o is missing: the update to send")));
    }
    if (FindOption("a")) {
        if (!Address().Parse(options.address)) {
            errors.push_back(usageError(
                "badAddress",
                fault("Bad address", "\"%1\" is not an IPv4 address or host name with a port",
                      options.address)));
        }
    } else if (isComplete) {
        errors.push_back(
            usageError("missingOption", fault("Option missing", "-a is missing: the device")));
    }
    return errors;
}

void JobApplication::ReadNumber(char const* option, int smallest, int largest, int& value,
                                std::vector<Error>& errors) const {
    String text;
    if (!GetOptionValues(option, text)) {
        return;
    }
    unsigned long long number = 0;
    bool const isNumber =
        std::ranges::all_of(text.View(), [](char c) { return c >= '0' && c <= '9'; }) &&
        core::parseWhole(text.View(), 10, static_cast<unsigned long long>(largest), number) &&
        number >= static_cast<unsigned long long>(smallest);
    if (!isNumber) {
        errors.push_back(
            usageError("badNumber", fault("Bad number", "-%1 must be from %2 to %3, not \"%4\"",
                                          option, smallest, largest, text)));
        return;
    }
    value = static_cast<int>(number);
}

void JobApplication::RunJob(JobOptions const& options) {
    std::optional<JobRun> run;
    // The handler must be there before the threads of the run, and end before the run is destroyed.
    sys::platform::InterruptHandler ending(interrupt);
    handler = &ending;
    run.emplace(options);
    running = &*run;
    running.notify_all();
    run->PrintBanner(getVersionLong(true));
    try {
        exitStatus_ = run->Run(timeouts);
    } catch (std::bad_alloc const& exception) {
        exitStatus_ = run->Abort("noMemory", program::errorFromException(exception));
    } catch (std::exception const& exception) {
        exitStatus_ = run->Abort("internal", program::errorFromException(exception));
    }
}

}  // namespace job
