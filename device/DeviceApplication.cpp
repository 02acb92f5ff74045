#include "device/DeviceApplication.h"

#include "core/console/Console.h"
#include "core/console/UsageText.h"
#include "core/console/errorLine.h"
#include "core/net/IPv4Address.h"
#include "core/net/Socket.h"

namespace device {

using core::Console;
using core::IPv4Address;
using core::String;

namespace {

char const grammar[] = "h|help=0>b|bind=1>1|once=0>c|check=0";
/// This machine alone: a rehearsal is not to be seen from outside unless it is asked for.
char const defaultBind[] = "127.0.0.1:3007";
int const defaultPort = 3007;
int const largestPort = 65535;

enum ExitStatus { done = 0, failed = 1, wrongUsage = 2 };

}  // namespace

DeviceApplication::DeviceApplication() : core::Application("ravelink-device") {
    setVersionModelName("Halvoren");
    setVersionNumber(1, 0);
    setDevStage(core::version::CEDevStage::release);
    setDescription("Simulated Device\n");
}

DeviceApplication::~DeviceApplication() = default;

void DeviceApplication::Main(int argc, char const* const* argv) {
    Console::write(getVersionLong(true), true);
    core::StringArray errors(16);
    CommandLinePrepare(argc, argv, grammar, errors);
    for (int i = 0; i < errors.Count(); ++i) {
        Console::write(core::errorLine(errors[i]), true);
    }
    if (errors.Count() > 0) {
        Console::write("", true);
        showUsage();
        result_ = wrongUsage;
        return;
    }
    if (FindOption("h")) {
        showUsage();
        return;
    }
    Run();
}

bool DeviceApplication::Init() {
    if (!core::Socket::init()) {
        return Quit("Socket init error", "Unable to start the socket library", failed);
    }
    String text(defaultBind);
    GetOptionValues("b", text);
    IPv4Address address;
    if (!address.Set(text.Replace(":", "|"))) {
        return Quit("Bad address",
                    String::format("The address provided (%1) is not a valid IPv4 address. Please "
                                   "use the form IP:Port")
                        .argi(1, text),
                    wrongUsage);
    }
    if (address.Port() == IPv4Address::noPort) {
        address.SetPortA(defaultPort);
    }
    if (address.Port() < 0 || address.Port() > largestPort) {
        return Quit("Invalid port",
                    String::format("The address provided (%1) does not contain a valid port. "
                                   "Please use a port from 0 to 65535")
                        .argi(1, text),
                    wrongUsage);
    }
    reporter_ = std::make_unique<Reporter>(FindOption("once"));
    server_ = std::make_unique<DeviceServer>(
        behaviour_, *reporter_, DeviceLimits{},
        FindOption("c") ? DeviceServer::Content::archives : DeviceServer::Content::anything);
    server_->AddBind(address);
    if (server_->StartListen() < 1) {
        return Quit("Unable to listen",
                    String::format("The address (%1) is in use or is not one of this machine")
                        .argi(1, address.GetAsString(true).Replace("|", ":")),
                    failed);
    }
    Console::write(
        String::format("- Listening on: %1").argi(1, server_->GetBoundName(0).Replace("|", ":")),
        true);
    return true;
}

void DeviceApplication::Done() {
    server_.reset();
    core::Socket::done();
    if (FindOption("once") && !reporter_->Completed()) {
        result_ = failed;
    }
}

bool DeviceApplication::Quit(String const& title, String const& message, int result) {
    Console::write(core::errorLine(String::format("%1=").argi(1, title).AppendNew(message)), true);
    result_ = result;
    RequestTermination(normalRequest);
    return false;
}

void DeviceApplication::showUsage() {
    using namespace core::usage;
    String const lines[] = {
        heading("Usage:"),
        String("\t").AppendNew(literal("ravelink-device")).AppendNew(optional(" [OPTIONS]")),
        heading("where options are:"),
        option("-b, --bind       ",
               ": Where to listen, AAA.BBB.CCC.DDD:Port; port 0 takes a free one (127.0.0.1:3007)"),
        option("-1, --once       ",
               ": End after one update; exit status 1 when it was not completed"),
        option("-c, --check      ", ": Take nothing but sound update archives"),
        option("-h, --help       ", ": Show this screen"),
        String(),
    };
    for (String const& line : lines) {
        Console::write(line, true);
    }
}

}  // namespace device
