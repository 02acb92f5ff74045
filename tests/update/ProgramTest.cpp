#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"
#include "tests/support/run.h"

namespace {

using support::Ran;
using support::run;
using Lines = std::vector<std::string>;

/// What runs a program: the one built along with the test, or what a variable says, which may be
/// that of another system.
std::string commandOf(char const* variable, char const* built) {
    char const* const other = std::getenv(variable);
    return other != nullptr ? other : built;
}

bool const underWine = std::getenv("RAVELINK_UPDATER") != nullptr;
std::string const ravelink = commandOf("RAVELINK_UPDATER", RAVELINK);
std::string const ravelinkDevice = commandOf("RAVELINK_SIMULATED_DEVICE", RAVELINK_DEVICE);

std::string const banner = "ravelink " RAVELINK_VERSION " (Halvoren) - Ethernet Updater";

TEST(Program, CommandLinesThatReachNoDevice) {
    support::TemporaryFolder const folder;
    std::string const file = folder.Write("update.rvl", "x");
    auto const missing = [](std::string const& path) {
        return "*** Update file missing: Cannot find the file \"" +
               support::replaced(path, "=", ": ") + "\". Please provide the correct path";
    };
    auto const badPort = [](std::string const& address) {
        return "*** Invalid port: The address provided (" + address +
               ") does not contain a valid port. Please use the form IP|Port";
    };
    // No connection can be made to 127.0.0.0.
    auto const unreachable = [](std::string const& port) {
        return Lines{"- Connecting to: 127.0.0.0:" + port + " ...",
                     "*** Connection failed: Unable to connect to (127.0.0.0|" + port +
                         "). Please check the address and try again"};
    };
    std::string const strange = folder.PathOf("100%1=%s.rvl");
    struct Row {
        std::string arguments;
        Lines errors;
        bool showsUsage = false;
    } const rows[] = {
        {"", {"*** Origin file name missing: Please provide the correct -o option"}},
        {"-h", {}, true},
        {"--HELP -o " + file + " -a 127.0.0.1", {}, true},
        {"--bad=1 -h x",
         {"*** Invalid option: --bad 1", "*** Invalid number of arguments: -h x"},
         true},
        {"-o " + folder.PathOf("none"), {missing(folder.PathOf("none"))}},
        {"-o '" + strange + "'", {missing(strange)}},
        {"-o " + folder.Path(), {missing(folder.Path())}},
        {"-t x -i y -o " + file,
         {"*** Sensor IP address missing: Please provide the correct -a option"}},
        {"-o=" + file + " --address=10.0.0:7",
         {"*** Bad address: The address provided (10.0.0|7) is not a valid IPv4 address. Please "
          "use the form IP:Port"}},
        {"--origin " + file + " -a 127.0.0.1:65536", {badPort("127.0.0.1|65536")}},
        {"-o " + file + " -a 127.0.0.1:0", {badPort("127.0.0.1|0")}},
        {"-o " + file + " -a=127.0.0.1:-9999999999", {badPort("127.0.0.1|-9999999999")}},
        {"-o " + file + " -a 127.0.0.0:65535", unreachable("65535")},
        {"-o " + file + " -a 127.0.0.0:1", unreachable("1")},
        // An octet too big leaves an address to try, without a port.
        {"-o " + file + " -a 127.0.0.999:1", unreachable("3007")},
    };
    Lines const usage = {"Usage:",
                         "\travelink [OPTIONS] -o originFile -a ipAddress",
                         "where:",
                         "\t-o, --origin *   : The update archive file name",
                         "\t-a, --address *  : The IPv4 address in the form AAA.BBB.CCC.DDD:Port",
                         "and options:",
                         "\t-h, --help       : Show this screen",
                         ""};
    for (Row const& row : rows) {
        Lines expected = {banner};
        expected.insert(expected.end(), row.errors.begin(), row.errors.end());
        if (!row.errors.empty()) {
            expected.push_back("");
        }
        if (row.showsUsage) {
            expected.insert(expected.end(), usage.begin(), usage.end());
        }
        Ran const ran = run(ravelink + " " + row.arguments);
        EXPECT_EQ(ran.lines, expected) << row.arguments;
        EXPECT_EQ(ran.status, 0) << row.arguments;
    }
}

TEST(Program, ReportsOfProgressTakeALineEachWhereNoSequenceIsUnderstood) {
    support::TemporaryFolder const folder;
    std::string const update = " -o " + folder.Write("update.rvl", std::string(600'000, 'x'));
    std::string const start = "script -qec 'TERM=dumb ";
    std::string const end = "' /dev/null < /dev/null";
    if (underWine || run(start + "true " + end + " 2>&1").status != 0) {
        GTEST_SKIP() << "no pseudo-terminals to be had here, or none that has no console";
    }
    ScenarioDevice device;
    Lines lines = run(start + ravelink + update + " -a " + device.Address() + end).lines;
    ASSERT_GT(lines.size(), 6u);
    EXPECT_EQ(support::replaced(lines[4] + lines[5] + lines[6], "\r", ""),
              ">   Transferred by now: 256.0 KB>   Transferred by now: 512.0 KB          "
              "- File completely sent: 585.9 KB          ");
}

TEST(Program, ReportsOfProgressTakeOneLineOfATerminal) {
    if (run("tmux -V 2>&1").status != 0) {
        GTEST_SKIP() << "no tmux here, whose screen could be read";
    }
    support::TemporaryFolder const folder;
    ScenarioDevice device;
    std::string const tmux = "tmux -f /dev/null -S " + folder.PathOf("socket") + " ";
    Lines const screen =
        run(tmux + "new-session -d -x 80 -y 24 '" + ravelink + " -o " +
            folder.Write("update.rvl", std::string(600'000, 'x')) + " -a " + device.Address() +
            "; sleep 60'\nfor i in $(seq 500); do " + tmux +
            "capture-pane -p | grep -q restart.itself && break; sleep 0.02; done\n" + tmux +
            "capture-pane -ep; " + tmux + "kill-server")
            .lines;
    ASSERT_GT(screen.size(), 5u);
    // Where the colour ends, behind the text or at the next one, is the terminal's choice.
    EXPECT_EQ(support::replaced(screen[3] + screen[4] + screen[5], "\x1B[39m", ""),
              "- The device has accepted our request.- File completely sent: \x1B[92m585.9 KB"
              "  The update process may take a while. Please wait...");
}

TEST(Program, UpdatesADeviceAlthoughNobodyListens) {
    support::TemporaryFolder const folder;
    std::string const file = folder.Write("update.rvl", std::string(1'000'000, 'x'));
    for (char const* const output : {"| head -1", ">&-", "> /dev/full", "<&- >&- 2>&-"}) {
        if (underWine && *output == '<') {
            continue;  // Wine then takes its own connection to its server for standard output
        }
        ScenarioDevice device;
        run(ravelink + " -o " + file + " -a " + device.Address() + " " + output);
        EXPECT_EQ(device.End(), std::vector{device::Outcome::complete}) << output;
    }
}

TEST(Program, UpdatesADeviceAlthoughItsTerminalIsClosed) {
    if (run("tmux -V 2>&1").status != 0) {
        GTEST_SKIP() << "no tmux here, whose window could be closed";
    }
    support::TemporaryFolder const folder;
    std::string const tmux = "tmux -f /dev/null -S " + folder.PathOf("socket") + " ";
    ScenarioDevice device([&](device::Moment const& moment, device::Wire& wire) {
        if (moment.step == device::Step::Data) {
            run(tmux + "kill-server 2>&1");
        }
        return device::Behaviour().Act(moment, wire);
    });
    // The signal is no matter of Windows: Wine must not die of it.
    run(tmux + "new-session -d '" + (underWine ? "trap \"\" HUP; " : "") + ravelink + " -o " +
        folder.Write("z\xc3\xbcrich.rvl", std::string(1'000'000, 'x')) + " -a " + device.Address() +
        "'");
    EXPECT_EQ(device.End(), std::vector{device::Outcome::complete});
}

/// A shell script that starts devices with these options, which print to a log and their exit
/// status behind it, and waits until the last of them listens.
std::string startDevices(std::string const& options, std::string const& log, int count = 1) {
    return "{ sh -c 'echo $$ > " + log + ".pid; exec " + ravelinkDevice +
           " -b 127.0.0.1:0 --once " + options + "' > " + log + "; echo $? >> " + log +
           "; } &\n"
           "for i in $(seq 500); do a=$(sed -n 's/.*- Listening on: //p' " +
           log + " 2>&1)\n[ \"$(echo \"$a\" | grep -c ^127)\" = " + std::to_string(count) +
           " ] && break; sleep 0.02; done\n";
}

TEST(Program, DevicesShowWhatTravelsAndStoreWhatArrivesWhole) {
    support::TemporaryFolder const folder;
    std::string const log = folder.PathOf("device.log");
    // More devices than one server socket has places; an answer to the header saves its wait.
    int const devices = 34;
    // A terminal takes U+061C for an order to write from right to left.
    std::string const stored = folder.PathOf("a=\xD8\x9C");
    std::string const options = "-v -n 34 -d " + stored + " -s " +
                                folder.Write("s.conf",
                                             "header = notify Accepted, wait 300\n"
                                             "complete = cut 3 Complete, notify Complete");
    Ran const ran = run(
        "mkdir " + stored + "; sh " +
        folder.Write("devices.sh", startDevices(options, log, devices) + "for each in $a; do " +
                                       ravelink + " -o " + folder.Write("update.rvl", "x") +
                                       " -a $each > /dev/null & done; wait\ncat " + stored +
                                       "/127.0.0.1-*-1.rvl\ngrep '^.34. ' " + log +
                                       " | sed 's/[0-9]*\\.[0-9]* s/TIME/; s/:[0-9].*//; s|Stored: "
                                       ".*a=?/.*|Stored: FOLDER|'; tail -1 " +
                                       log));
    EXPECT_EQ(ran.lines, (Lines{"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx[34] - Listening on: 127.0.0.1",
                                "[34] - Connection from: 127.0.0.1",
                                "[34]     TIME < E8B47CC3 00000001 8CDC1683 174B833C",
                                "[34] - Request: 1.0 B (1 bytes), CRC-32 0x8CDC1683",
                                "[34]     TIME > E8B47CC3 00000001 00000001 FD46FDC5",
                                "[34]   Sent: Accepted, value 0x00000001",
                                "[34]     TIME < E8B47CC3 00000001 00010000 00000001",
                                "[34] - Header: token 0x00000001",
                                "[34]     TIME > E8B47CC3 00000001 00000001 FD46FDC5",
                                "[34]   Sent: Accepted, value 0x00000001",
                                "[34]     TIME < 1 bytes of the file",
                                "[34] - File received: 1 bytes, CRC-32 0x8CDC1683",
                                "[34]     TIME < 00000001 8CDC1683 00000001 E8B47CC3",
                                "[34] - Trailer: token 0x00000001",
                                "[34]     TIME > E8B47CC3 00000002 00000000 CDE1B783",
                                "[34]   Sent: Received, value 0x00000000",
                                "[34] - Stored: FOLDER",
                                "[34]     TIME > E8B47CC3 00000003 00000000 F0819E33",
                                "[34]   Sent: Checked, value 0x00000000",
                                "[34]     TIME > E8B47CC3 00000004 00000000 42A14223",
                                "[34]   Sent: Processing, value 0x00000000",
                                "[34]     TIME > E8B47C",
                                "[34]     TIME > E8B47CC3 00000005 00000001 08C65B05",
                                "[34]   Sent: Complete, value 0x00000001",
                                "[34] - The update is complete.",
                                "0"}));
}

TEST(Program, LoopbackNeedsNoNetworkAndAnUnreachablePeerIsTold) {
    // Root needs no user namespace, which some systems do not allow.
    bool const root = run("unshare --net true 2>&1").status == 0;
    std::string const alone = root ? "unshare --net " : "unshare --map-root-user --net ";
    if (run(alone + "ip link set lo up 2>&1").status != 0) {
        GTEST_SKIP() << "no network namespaces to be had here";
    }
    support::TemporaryFolder const folder;
    // Wine's server, which owns the sockets, has to be one that lives in the namespace.
    std::string const wine = "export WINEPREFIX=" + folder.PathOf("wine") +
                             "\ntrap 'TMPDIR=$WINEPREFIX wineserver -k' EXIT\n";
    std::string const log = folder.PathOf("device.log");
    std::string const command = ravelink + " -o " + folder.Write("update.rvl", "x") + " -a ";
    std::string const script =
        folder.Write("alone.sh", "ip link set lo up\n" + (underWine ? wine : "") + command +
                                     "10.0.0.7 | sed -n 3p\n" + startDevices("", log) + command +
                                     "$a | tail -1; wait\ntail -2 " + log + "\n");
    EXPECT_EQ(
        run(alone + "sh " + script).lines,
        (Lines{"*** Connection failed: Unable to connect to (10.0.0.7|3007). Please check the "
               "address and try again",
               "The device is updated and it will restart itself if needed.",
               "- The update is complete.", "0"}));
}

TEST(Program, AnInterruptedDeviceLeavesNothingBehind) {
    support::TemporaryFolder const folder;
    support::TemporaryFolder const stored;
    std::string const log = folder.PathOf("device.log");
    std::string const options =
        "-d " + stored.Path() + " -s " +
        folder.Write("s.conf", "header = notify Accepted\ndata = wait 600000");
    std::string const script =
        startDevices(options, log) + ravelink + " -o " + folder.Write("update.rvl", "x") +
        " -a $a > /dev/null & updater=$!\nfor i in $(seq 500); do [ -n \"$(ls -A " + stored.Path() +
        ")\" ] && break; sleep 0.02; done\nls -A " + stored.Path() + " | wc -l\np=$(cat " + log +
        ".pid)\nkill -TERM $p; sleep 0.01; kill -TERM $p; sleep 0.1; kill $updater; wait; tail "
        "-2 " +
        log + "; ls -A " + stored.Path();
    EXPECT_EQ(run("sh " + folder.Write("interrupt.sh", script)).lines,
              (Lines{"1", "*** Stopped: The update was broken off because the device stops", "1"}));
}

TEST(Program, DevicesReportWhyAnUpdateIsNotKept) {
    if (underWine) {
        GTEST_SKIP() << "the limits and paths of a shell are no matter of Windows";
    }
    support::TemporaryFolder const folder;
    folder.Write("s", "header = notify Accepted");
    folder.Write("u", std::string(10'000, 'x'));
    for (auto const& [limit, options, line] : std::vector<std::array<std::string, 3>>{
             {"export TMPDIR=a=\x01", "-c",
              "*** Update not checked: \"a=?/\": No such file or directory"},
             {"", "-c -d a=\x01",
              "*** Update not stored: \"a=?/127.0.0.1-PORT-1.rvl\": No such file or directory"},
             {"ulimit -f 8", "-d .",
              "*** Update not stored: \"./127.0.0.1-PORT-1.rvl\": File too large"},
         }) {
        std::string const script = "cd " + folder.Path() + "; mkdir a=\x01\n" + limit + "\n" +
                                   startDevices(options + " -s s", "log") +
                                   "rm -r a=\x01; unset TMPDIR; timeout 30 " + ravelink +
                                   " -o u -a $a > /dev/null; wait\n" +
                                   "sed -n 's/1-[0-9]*-/1-PORT-/; /Update not/p; $p' log";
        EXPECT_EQ(run("sh " + folder.Write("unkept.sh", script)).lines, (Lines{line, "1"}));
    }
}

TEST(Program, DeviceReportsItsOwnMistakes) {
    struct Row {
        std::string arguments;
        std::string error;
        int status;
    };
    ScenarioDevice taken;
    support::TemporaryFolder const folder;
    for (Row const& row : {
             Row{"-x", "*** Invalid option: -x ", 2},
             Row{"-b nowhere",
                 "*** Bad address: The address provided (nowhere) is not a valid IPv4 address. "
                 "Please use the form IP:Port",
                 2},
             Row{"-b 127.0.0.1:65536",
                 "*** Invalid port: The address provided (127.0.0.1:65536) does not contain a "
                 "valid port. Please use a port from 0 to 65535",
                 2},
             Row{"-b " + taken.Address(),
                 "*** Unable to listen: The address (" + taken.Address() +
                     ") cannot be used: Address already in use",
                 1},
             Row{"-b 127.0.0.1:65535 -n 2",
                 "*** Bad count: From here on there can be 1 to 1 devices, not 2", 2},
             Row{"-n 0", "*** Bad count: From here on there can be 1 to 1000 devices, not 0", 2},
             Row{"-d " + folder.PathOf("a=\xD8\x9C"),
                 "*** Folder missing: Cannot find the folder \"" + folder.PathOf("a=?") +
                     "\" to store updates in",
                 1},
             Row{"-s " + folder.PathOf("a=\xD8\x9C"),
                 "*** Scenario not readable: \"" + folder.PathOf("a=?") +
                     "\": No such file or directory",
                 1},
         }) {
        Ran const ran = run(ravelinkDevice + " " + row.arguments + "; echo $?");
        ASSERT_EQ(ran.lines.size(), row.arguments == "-x" ? 16u : 3u) << row.arguments;
        EXPECT_EQ(ran.lines[0],
                  "ravelink-device " RAVELINK_VERSION " (Halvoren) - Simulated Device");
        EXPECT_EQ(ran.lines[1], row.error);
        EXPECT_EQ(ran.lines.back(), std::to_string(row.status)) << row.arguments;
    }
}

}  // namespace
