#include "device/DeviceApplication.h"

#include <algorithm>

#include "core/console/errorLine.h"
#include "core/net/Socket.h"
#include "core/text/readNumber.h"
#include "device/loadScenario.h"
#include "device/println.h"
#include "device/usage.h"
#include "sys/file.h"
#include "sys/platform/InterruptWatch.h"

namespace device {

using core::IPv4Address;
using core::String;
using core::StringArray;

namespace {

/// This machine alone: a rehearsal is not to be seen from outside unless it is asked for.
char const defaultBind[] = "127.0.0.1:3007";
int const defaultPort = 3007;
int const largestPort = 65535;
/// A thread and a socket each: more would only be a slip of the finger.
int const largestCount = 1000;

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

}  // namespace

DeviceApplication::DeviceApplication() : core::Application("ravelink-device") {
    setVersionModelName("Halvoren");
    setVersionNumber(RAVELINK_VERSION);
    setDevStage(core::version::CEDevStage::release);
    setDescription("Simulated Device\n");
}

DeviceApplication::~DeviceApplication() = default;

void DeviceApplication::Main(int argc, char const* const* argv) {
    println(getVersionLong(true));
    StringArray errors(16);
    CommandLinePrepare(argc, argv, optionGrammar, errors);
    if (errors.Count() > 0) {
        Quit(errors, wrongUsage);
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
        return Quit("Socket init error", "Unable to start the socket library", failed);
    }
    if (!ReadAddress() || !ReadCount() || !ReadFolder() || !ReadScenario()) {
        return false;
    }
    intake_.archivesOnly = FindOption("c");
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
        return Quit("Bad address",
                    String::format("The address provided (%1) is not a valid IPv4 address. Please "
                                   "use the form IP:Port")
                        .argi(1, text),
                    wrongUsage);
    }
    if (address_.Port() == IPv4Address::noPort) {
        address_.SetPortA(defaultPort);
    }
    if (address_.Port() < 0 || address_.Port() > largestPort) {
        return Quit("Invalid port",
                    String::format("The address provided (%1) does not contain a valid port. "
                                   "Please use a port from 0 to 65535")
                        .argi(1, text),
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
    int const most = std::min(largestCount, largestPort - address_.Port() + 1);
    if (!core::readWhole(text.View(), 10, static_cast<unsigned>(most), count) || count < 1) {
        return Quit("Bad count",
                    String::format("From here on there can be 1 to %1 devices, not %2")
                        .argi(1, most)
                        .argi(2, text),
                    wrongUsage);
    }
    count_ = static_cast<int>(count);
    return true;
}

bool DeviceApplication::ReadFolder() {
    if (GetOptionValues("d", intake_.folder) && !sys::file::isDirectory(intake_.folder)) {
        return Quit("Folder missing",
                    String::format("Cannot find the folder \"%1\" to store updates in")
                        .argi(1, intake_.folder),
                    failed);
    }
    return true;
}

bool DeviceApplication::ReadScenario() {
    String path;
    StringArray errors(16);
    if (!GetOptionValues("s", path) || loadScenario(path, scenario_, errors)) {
        return true;
    }
    return Quit(errors, failed);
}

bool DeviceApplication::StartDevice(int index) {
    String const prefix = count_ > 1 ? String::format("[%1] ").argi(1, index + 1) : String();
    auto const detail = FindOption("v") ? Reporter::Detail::bytes : Reporter::Detail::steps;
    Device& device = devices_.emplace_back();
    device.reporter =
        std::make_unique<Reporter>(prefix, detail, FindOption("once") ? &awaited_ : nullptr);
    device.server =
        std::make_unique<DeviceServer>(scenario_, *device.reporter, DeviceLimits(), intake_);
    IPv4Address address = address_;
    if (address.Port() != 0) {
        address.SetPortA(address.Port() + index);
    }
    device.server->AddBind(address);
    if (device.server->StartListen() < 1) {
        return Quit("Unable to listen",
                    String::format("The address (%1) is in use or is not one of this machine")
                        .argi(1, address.GetAsString(true).Replace("|", ":")),
                    failed);
    }
    println(prefix.AppendNew(String::format("- Listening on: %1")
                                 .argi(1, device.server->GetBoundName(0).Replace("|", ":"))));
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

bool DeviceApplication::Quit(StringArray const& errors, int result) {
    for (int i = 0; i < errors.Count(); ++i) {
        println(core::errorLine(errors[i]));
    }
    result_ = result;
    RequestTermination(normalRequest);
    return false;
}

bool DeviceApplication::Quit(String const& title, String const& message, int result) {
    StringArray errors;
    errors.Add(title, message);
    return Quit(errors, result);
}

}  // namespace device
