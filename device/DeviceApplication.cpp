#include "device/DeviceApplication.h"

#include <algorithm>
#include <cerrno>

#include "core/console/lines.h"
#include "core/net/Socket.h"
#include "core/text/message.h"
#include "core/text/parseNumber.h"
#include "core/text/printable.h"
#include "program/usage.h"
#include "sys/file.h"
#include "update/protocol/records.h"

namespace device {

using core::fault;
using core::IPv4Address;
using core::message;
using core::String;
using program::ExitStatus;

namespace {

/// Loopback: a rehearsal is not reachable from outside unless the user asks for it.
char const defaultBind[] = "127.0.0.1";
/// Each device needs a thread and a socket: a larger number would be a typing error.
int const largestCount = 1000;

char const optionGrammar[] =
    "h|help=0>b|bind=1>n|count=1>1|once=0>c|check=0>t|target=1>m|max-size=1>d|directory=1>"
    "s|scenario=1>v|verbose=0>V|version=0";

void showUsage() {
    using namespace program::usage;
    print({
        {heading("Usage:")},
        {"\t" + literal("ravelink-device") + optional(" [OPTIONS]")},
        {heading("where options are:")},
        {"-b, --bind", "Listen on AAA.BBB.CCC.DDD:Port; port 0 picks a free one (127.0.0.1:3007)"},
        {"-n, --count", "Run N devices on consecutive ports (1)"},
        {"-s, --scenario", "Behave as this scenario file, or shipped scenario, specifies"},
        {"-c, --check", "Accept only valid update archives"},
        {"-t, --target", "Accept only valid archives for this target ID, or without one"},
        {"-m, --max-size", "Accept updates of up to N bytes (2147483647)"},
        {"-d, --directory", "Store complete updates there, as Address-Port-Number.rvl"},
        {"-1, --once", "Exit after one update on each device; status 1 if one was not completed"},
        {"-v, --verbose", "Log all traffic as a timed hex dump"},
        {"-V, --version", "Print the version"},
        {"-h, --help", "Show this screen"},
    });
}

/// Ports below this one may be reserved for privileged users.
int const firstUserPort = 1024;

/// Reads a number from 1 to most. Returns false if text is not one.
bool readNumber(String const& text, int most, int& number) {
    unsigned long long value = 0;
    bool const isNumber = core::parseWhole(text.View(), 10, static_cast<unsigned>(most), value);
    number = static_cast<int>(value);
    return isNumber && number > 0;
}

/// Returns why listening on an address failed. Not every C library describes the errors of sockets.
String listenError(int error, int port) {
    if (error == EACCES && port < firstUserPort) {
        return "no permission for ports below 1024";
    }
    switch (error) {
        case EADDRINUSE:
            return "already in use";
        case EADDRNOTAVAIL:
            return "not an address of this computer";
        default:
            return core::cLibraryErrorText(error);
    }
}

}  // namespace

// An interrupted device leaves no partial update in its directory.
DeviceApplication::DeviceApplication()
    : Program({"ravelink-device", "Simulated Device\n", optionGrammar, showUsage,
               program::Interruption::terminate}) {}

String DeviceApplication::OptionGrammar(int argc, char const* const* argv) const {
    // The parser ignores case and uses the first entry that matches: a literal -V, which prints the
    // version as in the other programs, must not start a device with -v.
    bool const printsVersion = std::any_of(argv + std::min(argc, 1), argv + argc,
                                           [](char const* word) { return String(word) == "-V"; });
    return printsVersion ? String("V|version=0>") + optionGrammar : String(optionGrammar);
}

bool DeviceApplication::Init() {
    if (!core::Socket::init()) {
        return Quit({fault("Socket init error", "Unable to start the socket library")},
                    ExitStatus::failed);
    }
    if (!ReadAddress() || !ReadCount() || !ReadMaxSize() || !ReadDirectory() || !ReadScenario()) {
        return false;
    }
    policy_.archivesOnly = FindOption("c");
    if (String target; GetOptionValues("t", target)) {
        policy_.target = target.View();
    }
    awaited_ = count_;
    for (int i = 0; i < count_; ++i) {
        if (!StartDevice(i)) {
            return false;
        }
    }
    return true;
}

bool DeviceApplication::ReadAddress() {
    String text(defaultBind);
    GetOptionValues("b", text);
    if (!address_.Set(text.Replace(":", "|"))) {
        return Quit(
            {fault("Bad address", "\"%1\" is not an IPv4 address in the form IP:Port", text)},
            ExitStatus::wrongUsage);
    }
    if (address_.Port() == IPv4Address::noPort) {
        address_.SetPortA(update::defaultPort);
    }
    if (address_.Port() < 0 || address_.Port() > update::largestPort) {
        return Quit({fault("Invalid port", "The port in \"%1\" must be from 0 to %2", text,
                           update::largestPort)},
                    ExitStatus::wrongUsage);
    }
    return true;
}

bool DeviceApplication::ReadCount() {
    String text;
    int const most = std::min(largestCount, update::largestPort - address_.Port() + 1);
    if (!GetOptionValues("n", text) || readNumber(text, most, count_)) {
        return true;
    }
    return Quit({fault("Bad count", "-n must be from 1 to %1, not %2", most, text)},
                ExitStatus::wrongUsage);
}

bool DeviceApplication::ReadMaxSize() {
    String text;
    int bytes = 0;
    if (!GetOptionValues("m", text)) {
        return true;
    }
    if (!readNumber(text, update::largestFile, bytes)) {
        return Quit(
            {fault("Bad size", "-m must be from 1 to %1, not %2", update::largestFile, text)},
            ExitStatus::wrongUsage);
    }
    policy_.maxSize = static_cast<std::uint32_t>(bytes);
    return true;
}

bool DeviceApplication::ReadDirectory() {
    String directory;
    if (!GetOptionValues("d", directory)) {
        return true;
    }
    policy_.directory = directory.View();
    if (!sys::file::isDirectory(directory)) {
        return Quit({fault("Directory missing",
                           "Cannot find the directory \"%1\" to store updates in", directory)},
                    ExitStatus::failed);
    }
    return true;
}

bool DeviceApplication::ReadScenario() {
    String path;
    std::vector<core::Fault> errors;
    if (!GetOptionValues("s", path) || loadScenario(findScenario(path), scenario_, errors)) {
        return true;
    }
    return Quit(errors, ExitStatus::failed);
}

bool DeviceApplication::StartDevice(int index) {
    String const prefix = count_ > 1 ? message("[%1] ", index + 1) : String();
    auto const detail = FindOption("v") ? Reporter::Detail::bytes : Reporter::Detail::steps;
    Device& device = devices_.emplace_back();
    device.reporter =
        std::make_unique<Reporter>(prefix, detail, FindOption("once") ? &awaited_ : nullptr);
    device.server =
        std::make_unique<DeviceServer>(scenario_, *device.reporter, DeviceTimeouts(), policy_);
    IPv4Address address = address_;
    if (address.Port() != 0) {
        address.SetPortA(address.Port() + index);
    }
    device.server->AddBind(address);
    if (device.server->StartListen() < 1) {
        return Quit({fault("Unable to listen", "The address %1 cannot be used: %2",
                           address.GetAsString(true).Replace("|", ":"),
                           listenError(device.server->LastError(), address.Port()))},
                    ExitStatus::failed);
    }
    String const name = core::printable(device.server->GetBoundName(0).Replace("|", ":"));
    core::printLine(prefix.AppendNew(message("- Listening on: %1", name)));
    return true;
}

void DeviceApplication::Done() {
    bool completed = true;
    for (Device& device : devices_) {
        device.server.reset();
        completed = completed && device.reporter->HasCompleted();
    }
    core::Socket::done();
    if (FindOption("once") && !completed) {
        RaiseStatus(ExitStatus::failed);
    }
}

}  // namespace device
