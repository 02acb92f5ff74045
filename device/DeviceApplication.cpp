#include "device/DeviceApplication.h"

#include <algorithm>
#include <cerrno>

#include "core/net/Socket.h"
#include "core/text/StringArray.h"
#include "core/text/message.h"
#include "core/text/parseNumber.h"
#include "core/text/printable.h"
#include "device/loadScenario.h"
#include "device/println.h"
#include "device/usage.h"
#include "sys/file.h"
#include "sys/platform/InterruptWatch.h"
#include "update/protocol/records.h"

namespace device {

using core::IPv4Address;
using core::String;
using core::StringArray;

namespace {

/// This machine alone: a rehearsal is not to be seen from outside unless it is asked for.
char const defaultBind[] = "127.0.0.1";
/// A thread and a socket each: more would only be a slip of the finger.
int const largestCount = 1000;

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

/// Why an address cannot be used. Not all C libraries have messages for the errors of sockets.
String reasonOf(int error) {
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

DeviceApplication::DeviceApplication() : core::Application("ravelink-device") {
    setVersionModelName("Halvoren");
    setVersionNumber(RAVELINK_VERSION_MAJOR, RAVELINK_VERSION_MINOR);
    setDevStage(core::version::CEDevStage::release);
    setDescription("Simulated Device\n");
}

DeviceApplication::~DeviceApplication() = default;

void DeviceApplication::Main(int argc, char const* const* argv) {
    println(getVersionLong(true));
    StringArray entries;
    CommandLinePrepare(argc, argv, optionGrammar, entries);
    if (entries.Count() > 0) {
        Quit(core::faultsFromEntries(entries), wrongUsage);
        println("");
        showUsage();
        return;
    }
    if (FindOption("h")) {
        showUsage();
        return;
    }
    // Whatever has not arrived whole is not to stay in the folder.
    sys::platform::InterruptWatch const watch([] { RequestTermination(normalRequest); });
    Run();
}

bool DeviceApplication::Init() {
    if (!core::Socket::init()) {
        return Quit({core::fault("Socket init error", "Unable to start the socket library")},
                    failed);
    }
    if (!ReadAddress() || !ReadCount() || !ReadFolder() || !ReadScenario()) {
        return false;
    }
    policy_.archivesOnly = FindOption("c");
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
        return Quit({core::fault("Bad address",
                                 "The address provided (%1) is not a valid IPv4 address. Please "
                                 "use the form IP:Port",
                                 text)},
                    wrongUsage);
    }
    if (address_.Port() == IPv4Address::noPort) {
        address_.SetPortA(update::defaultPort);
    }
    if (address_.Port() < 0 || address_.Port() > update::largestPort) {
        return Quit({core::fault("Invalid port",
                                 "The address provided (%1) does not contain a valid port. "
                                 "Please use a port from 0 to %2",
                                 text, update::largestPort)},
                    wrongUsage);
    }
    return true;
}

bool DeviceApplication::ReadCount() {
    String text;
    if (!GetOptionValues("n", text)) {
        return true;
    }
    unsigned long long count = 0;
    int const most = std::min(largestCount, update::largestPort - address_.Port() + 1);
    if (!core::parseWhole(text.View(), 10, static_cast<unsigned>(most), count) || count < 1) {
        return Quit({core::fault("Bad count", "From here on there can be 1 to %1 devices, not %2",
                                 most, text)},
                    wrongUsage);
    }
    count_ = static_cast<int>(count);
    return true;
}

bool DeviceApplication::ReadFolder() {
    String folder;
    if (!GetOptionValues("d", folder)) {
        return true;
    }
    policy_.folder = folder.View();
    if (!sys::file::isDirectory(folder)) {
        return Quit({core::fault("Folder missing",
                                 "Cannot find the folder \"%1\" to store updates in", folder)},
                    failed);
    }
    return true;
}

bool DeviceApplication::ReadScenario() {
    String path;
    std::vector<core::Fault> errors;
    if (!GetOptionValues("s", path) || loadScenario(path, scenario_, errors)) {
        return true;
    }
    return Quit(errors, failed);
}

bool DeviceApplication::StartDevice(int index) {
    String const prefix = count_ > 1 ? core::message("[%1] ", index + 1) : String();
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
        return Quit({core::fault("Unable to listen", "The address (%1) cannot be used: %2",
                                 address.GetAsString(true).Replace("|", ":"),
                                 reasonOf(device.server->LastError()))},
                    failed);
    }
    String const name = core::printable(device.server->GetBoundName(0).Replace("|", ":"));
    println(prefix.AppendNew(core::message("- Listening on: %1", name)));
    return true;
}

void DeviceApplication::Done() {
    bool completed = true;
    for (Device& device : devices_) {
        device.server.reset();
        completed = completed && device.reporter->Completed();
    }
    core::Socket::done();
    if (FindOption("once") && !completed) {
        result_ = std::max<int>(result_, failed);
    }
}

bool DeviceApplication::Quit(std::vector<core::Fault> const& errors, int result) {
    for (String const& line : core::faultLines(errors)) {
        println(line);
    }
    result_ = result;
    RequestTermination(normalRequest);
    return false;
}

}  // namespace device
