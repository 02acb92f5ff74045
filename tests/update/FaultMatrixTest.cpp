#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"
#include "tests/support/system.h"
#include "tests/update/TestedUpdater.h"

namespace {

using device::Step;
using enum device::Step;
using Lines = std::vector<std::string>;

std::string const acceptedLine = "- The device has accepted our request.";
std::string const receivedLine = "- The device has received the update file.";
std::string const checkedLine = "- The device has checked the update file.";
std::string const processingLine = "- The device is processing the update file.";
std::string const completeLine = "- The update process is complete.";

std::string const noAnswer = "*** Connection timeout: A timeout was reached reading from socket";
std::string const checkItself = "*** Invalid CRC: The server response cannot even check itself";
std::string const ghost = "*** > Ghost error: Please call the Ghostbusters!";
std::string const unknown = "*** > Error: I really don't know what happened here";
std::string const stranger = "*** The device do not recognize us: Something very bad happened here";
std::string const unexpected =
    "*** Unexpected error: We received something unexpected. Check the device";
std::string const stalled =
    "*** Timeout sending the file: It was impossible to complete the transfer of \"FILE\". This is "
    "a double mess";
std::string const notSent =
    "*** Error sending the file: It was impossible to send a bucket of data of \"FILE\". This is a "
    "triple mess";
std::string const tired =
    "*** Timeout error: Maybe the system is still updating, but we waited 5 minutes and we are "
    "tired";

/// The steps as scenarios name them, and the lines that the updater prints for each with a
/// conforming device and a file of one byte.
std::pair<std::string, Lines> const steps[] = {
    {"connect", {"- Connecting to: 127.0.0.1:PORT ...", "  Connected!"}},
    {"request", {acceptedLine}},
    {"header", {}},
    {"data",
     {"- File completely sent: 1.0 B", "  The update process may take a while. Please wait..."}},
    {"trailer", {receivedLine}},
    {"checked", {checkedLine}},
    {"processing", {processingLine}},
    {"complete", {completeLine, "  The firmware is restarting.", updated}},
};

std::string lastOf(Lines const& lines) {
    return lines.empty() ? "" : lines.back();
}

bool isError(Lines const& lines) {
    return lastOf(lines).starts_with("***");
}

std::size_t const largeFile = 16'000'000;

/// One cell of the matrix.
struct Fault {
    Step step;
    std::string actions;
    /// The step at which the updater notices, and the lines that it prints there instead of those
    /// of steps. Only an empty line follows an error.
    Step shows;
    Lines lines;
    /// The updater must wait for what the device sends after the header.
    bool answersHeader = false;

    Lines Expected() const {
        Lines all;
        for (auto const& each : steps) {
            bool const here = &each - steps == static_cast<int>(shows);
            Lines const& some = here ? lines : each.second;
            all.insert(all.end(), some.begin(), some.end());
            if (here && isError(lines)) {
                all.emplace_back();
                break;
            }
        }
        return all;
    }
};

class FaultMatrixTest : public testing::Test {
protected:
    /// Returns the lines that the updater prints in a session with end as the expected last line.
    /// Only the timeout that is to expire is short, so that slow machines do not run into others.
    Lines RunSession(device::Behaviour& scenario, std::string const& end,
                     bool answersHeader = false) {
        TestedUpdater::Instance().UseProductTimeouts();
        update::SessionTimeouts& timeouts = TestedUpdater::Instance().timeouts;
        if (end == noAnswer) {
            timeouts.requestAnswer = 150;
        } else if (end == stalled) {
            timeouts.transferStall = 300;
        } else if (end == tired) {
            timeouts.completion = 400;
            timeouts.notification = 100;
        }
        if (answersHeader) {
            timeouts.headerAnswer = update::SessionTimeouts().headerAnswer;
        }
        // A transfer fails only with more bytes than the operating system buffers.
        bool const large = end == stalled || end == notSent;
        std::string const path =
            directory_.Write("update.rvl", std::string(large ? largeFile : 1, 'x'));
        long const before = support::openDescriptors();
        Lines lines;
        {
            ScenarioDevice device([&](auto const& context, auto& connection) {
                return scenario.OnStep(context, connection);
            });
            lines = TestedUpdater::Instance().RunSession(path, device.Address());
            for (std::string& line : lines) {
                line =
                    support::replaced(support::replaced(line, device.Port(), "PORT"), path, "FILE");
            }
        }
        EXPECT_EQ(support::openDescriptors(), before);
        std::erase_if(lines, [](std::string const& line) {
            return line.starts_with(">   Transferred by now: ");
        });
        return end == tired ? WithoutWaits(lines) : lines;
    }

    /// Removes the line and the error that each timeout of a notification has printed.
    static Lines WithoutWaits(Lines lines) {
        auto const waits = std::erase_if(lines, [](std::string const& line) {
            return line.starts_with("  System is still updating. ") &&
                   line.ends_with(" until timeout");
        });
        EXPECT_EQ(std::erase(lines, noAnswer), waits);
        EXPECT_LE(waits, 4u) << "400 ms in waits of 100";
        return lines;
    }

    void Check(std::vector<Fault> const& faults) {
        for (Fault const& fault : faults) {
            std::string const text =
                steps[static_cast<int>(fault.step)].first + " = " + fault.actions;
            device::Scenario scenario = ScenarioDevice::scenarioOf(text);
            Lines const lines = RunSession(scenario, lastOf(fault.lines), fault.answersHeader);
            EXPECT_EQ(lines, fault.Expected()) << text;
        }
    }

    support::TemporaryDirectory directory_;
};

// The examples, each of which runs below, are further cells of the matrix.

TEST_F(FaultMatrixTest, RequiresAcceptedAfterTheRequest) {
    Check({
        {connect, "close", request, {noAnswer}},
        {connect, "cut 15 Accepted", request, {checkItself}},
        {connect, "notify Accepted", request, {acceptedLine, acceptedLine}, true},
        {request, "reset", request, {noAnswer}},
        {request, "cut 1 Accepted, close", request, {noAnswer}},
        {request, "notify Complete:9", request, {completeLine, stranger}},
        {request, "notify 0", request, {stranger}},
        {request, "notify Error:0", request, {unknown}},
        {request, "notify ErrorAlt:4294967295", request, {unknown}},
        {request, "together Accepted Processing", request, {acceptedLine, processingLine}, true},
        {request, "together Accepted Error:GhostError", request, {acceptedLine, ghost}, true},
    });
}

TEST_F(FaultMatrixTest, ReadsNothingBetweenHeaderAndTrailer) {
    std::string const powerCycle = "  Please power off the device and then power on again.";
    Check({
        {header, "close", trailer, {tired}},
        {header, "reset", data, {notSent}, true},
        {header, "cut 15 Accepted, silent", trailer, {tired}},
        {header, "notify 9", header, {}, true},
        {header, "notify Complete:3", header, {completeLine, powerCycle}, true},
        {header, "drip 1 Accepted", header, {acceptedLine}, true},
        {data, "cut 15 Processing", trailer, {checkItself}},
        {data, "notify 9", trailer, {unexpected}},
        {data, "notify Processing", trailer, {processingLine, receivedLine}},
        {trailer, "notify Accepted", trailer, {acceptedLine, unexpected}},
    });
}

TEST_F(FaultMatrixTest, EndsEveryExampleAsItsCommentShows) {
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(RAVELINK_SCENARIOS)) {
        std::string const text = support::contentOf(entry.path().string());
        Lines expected;
        for (std::string const& line : support::linesOf(text)) {
            if (line.starts_with("#   ")) {
                expected.push_back(line.substr(4));
            }
        }
        ASSERT_FALSE(expected.empty()) << entry.path();
        std::string const end = expected.back();
        device::Scenario scenario = ScenarioDevice::scenarioOf(text);
        for (auto& [step, actions] : scenario.steps) {
            for (device::Action& action : actions) {
                // Shorten only waits within the timeouts.
                action.numbers[0] /=
                    action.type == device::ActionType::wait && end == updated ? 100 : 1;
            }
        }
        if (isError(expected)) {
            expected.emplace_back();
        }
        Lines const lines =
            RunSession(scenario, end, text.find("header = notify") != std::string::npos);
        ASSERT_GE(lines.size(), expected.size()) << entry.path();
        EXPECT_EQ(Lines(lines.end() - static_cast<long>(expected.size()), lines.end()), expected)
            << entry.path();
        ++count;
    }
    EXPECT_GT(count, 40);
}

}  // namespace
