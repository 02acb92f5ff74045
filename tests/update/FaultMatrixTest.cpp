#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"
#include "tests/support/system.h"
#include "tests/update/TestedUpdater.h"

namespace {

using device::Step;
using Lines = std::vector<std::string>;

std::string const accepted = "- The device has accepted our request.";
std::string const received = "- The device has received the update file.";
std::string const checked = "- The device has checked the update file.";
std::string const processing = "- The device is processing the update file.";
std::string const complete = "- The update process is complete.";
std::string const firmware = "  The firmware is restarting.";
std::string const updated = "The device is updated and it will restart itself if needed.";

std::string const noAnswer = "*** Connection timeout: A timeout was reached reading from socket";
std::string const onion = "*** Invalid response: The server responded onion for garlic";
std::string const checkItself = "*** Invalid CRC: The server response cannot even check itself";
std::string const ghost = "*** > Ghost error: Please call the Ghostbusters!";
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

/// What the updater prints of each step with an honest device, for a file of one byte.
Lines honestLines(Step step) {
    switch (step) {
        case Step::Connect:
            return {"- Connecting to: 127.0.0.1:PORT ...", "  Connected!"};
        case Step::Request:
            return {accepted};
        case Step::Header:
            return {};
        case Step::Data:
            return {"- File completely sent: 1.0 B",
                    "  The update process may take a while. Please wait..."};
        case Step::Trailer:
            return {received};
        case Step::Checked:
            return {checked};
        case Step::Processing:
            return {processing};
        case Step::Complete:
            return {complete, firmware, updated};
    }
    return {};
}

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
    /// Where the updater notices, and what it prints there in the place of the honest lines. After
    /// an error nothing follows but an empty line.
    Step shows;
    Lines lines;
    /// The updater must not go on before the device has had its say behind the header.
    bool answersHeader = false;

    Lines Expected() const {
        Lines all;
        for (int i = 0; i <= static_cast<int>(Step::Complete); ++i) {
            Lines const some = i == static_cast<int>(shows) ? lines : honestLines(Step{i});
            all.insert(all.end(), some.begin(), some.end());
            if (i == static_cast<int>(shows) && lastOf(lines) == updated) {
                break;
            }
            if (i == static_cast<int>(shows) && isError(lines)) {
                all.emplace_back();
                break;
            }
        }
        return all;
    }
};

class FaultMatrixTest : public testing::Test {
protected:
    /// What the updater prints in a session that is expected to end with a line. Only the limit
    /// that is to run out is short, so that no slow machine runs into another.
    Lines RunSession(device::Behaviour& scenario, std::string const& end,
                     bool answersHeader = false) {
        TestedUpdater::Instance().UseProductLimits();
        update::SessionLimits& limits = TestedUpdater::Instance().limits;
        if (end == noAnswer) {
            limits.requestAnswer = 150;
        } else if (end == stalled) {
            limits.transferStall = 300;
        } else if (end == tired) {
            limits.completion = 400;
            limits.notification = 100;
        }
        if (answersHeader) {
            limits.headerAnswer = update::SessionLimits().headerAnswer;
        }
        // A transfer fails only with more than a system takes while the device reads nothing.
        bool const large = end == stalled || end == notSent;
        std::string const path =
            folder_.Write("update.rvl", std::string(large ? largeFile : 1, 'x'));
        long const before = support::openDescriptors();
        Lines lines;
        {
            ScenarioDevice device(
                [&](auto const& moment, auto& wire) { return scenario.Act(moment, wire); });
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

    /// Each wait in vain has printed one line and left one error: as many as time allowed.
    static Lines WithoutWaits(Lines lines) {
        auto const isWait = [](std::string const& line) {
            return line.starts_with("  System is still updating. ") &&
                   line.ends_with(" until timeout");
        };
        auto const waits = std::erase_if(lines, isWait);
        EXPECT_EQ(std::erase(lines, noAnswer), waits);
        EXPECT_LE(waits, 4u) << "400 ms in waits of 100";
        return lines;
    }

    void Check(std::vector<Fault> const& faults) {
        char const* const names[] = {"connect", "request", "header",     "data",
                                     "trailer", "checked", "processing", "complete"};
        for (Fault const& fault : faults) {
            std::string const text =
                std::string(names[static_cast<int>(fault.step)]).append(" = " + fault.actions);
            device::Scenario scenario = ScenarioDevice::scenarioOf(text);
            EXPECT_EQ(RunSession(scenario, lastOf(fault.lines), fault.answersHeader),
                      fault.Expected())
                << text;
        }
    }

    support::TemporaryFolder folder_;
};

TEST_F(FaultMatrixTest, BeforeTheRequest) {
    using enum Step;
    Check({
        {Connect, "silent", Request, {noAnswer}},
        {Connect, "close", Request, {noAnswer}},
        {Connect, "cut 15 Accepted", Request, {checkItself}},
        {Connect, "garbage 16", Request, {onion}},
        {Connect, "wrongMagic Accepted", Request, {onion}},
        {Connect, "wrongCrc Accepted", Request, {checkItself}},
        {Connect, "notify Error:GhostError", Request, {ghost}},
        {Connect, "notify Accepted", Request, {accepted, accepted}, true},
    });
    // The reset comes before or behind our request.
    device::Scenario reset = ScenarioDevice::scenarioOf("connect = reset");
    Lines const lines = RunSession(reset, noAnswer);
    EXPECT_TRUE(lines[2] == noAnswer ||
                lines[2] == "*** Unable to communicate: Error sending data to the device")
        << lines[2];
}

TEST_F(FaultMatrixTest, AnswersToTheRequest) {
    using enum Step;
    Check({
        {Request, "silent", Request, {noAnswer}},
        {Request, "close", Request, {noAnswer}},
        {Request, "reset", Request, {noAnswer}},
        {Request, "cut 15 Accepted, silent", Request, {noAnswer}},
        {Request, "cut 1 Accepted, close", Request, {noAnswer}},
        {Request, "garbage 16, silent", Request, {onion}},
        {Request, "wrongMagic Accepted", Request, {onion}},
        {Request, "wrongCrc Accepted", Request, {checkItself}},
        {Request, "notify Error:GhostError", Request, {ghost}},
        {Request, "notify ErrorAlt:GhostError", Request, {ghost}},
        {Request, "notify Received", Request, {received, stranger}},
        {Request, "notify Complete:9", Request, {complete, stranger}},
        {Request, "notify 0", Request, {stranger}},
        {Request, "drip 1 Accepted", Request, {accepted}},
        {Request, "together Accepted Processing", Request, {accepted, processing}, true},
        {Request, "together Accepted Error:GhostError", Request, {accepted, ghost}, true},
    });
}

TEST_F(FaultMatrixTest, AnswersToTheHeader) {
    using enum Step;
    Check({
        {Header, "silent", Trailer, {tired}},
        {Header, "close", Trailer, {tired}},
        {Header, "reset", Data, {notSent}, true},
        {Header, "cut 15 Accepted, silent", Trailer, {tired}},
        {Header, "garbage 16", Header, {onion}, true},
        {Header, "wrongMagic Accepted", Header, {onion}, true},
        {Header, "wrongCrc Accepted", Header, {checkItself}, true},
        {Header, "notify Error:GhostError", Header, {ghost}, true},
        {Header, "notify 9", Header, {}, true},
        {Header,
         "notify Complete:3",
         Header,
         {complete, "  Please power off the device and then power on again."},
         true},
        {Header, "drip 1 Accepted", Header, {accepted}, true},
    });
}

TEST_F(FaultMatrixTest, WhileTheFileIsUnderWay) {
    using enum Step;
    Check({
        {Data, "silent", Trailer, {tired}},
        {Data, "close", Trailer, {tired}},
        {Data, "reset", Data, {notSent}},
        {Data, "wait 86400000", Data, {stalled}},
        {Data, "cut 15 Processing", Trailer, {checkItself}},
        {Data, "garbage 16", Trailer, {onion}},
        {Data, "wrongMagic Received", Trailer, {onion}},
        {Data, "wrongCrc Received", Trailer, {checkItself}},
        {Data, "notify Error:GhostError", Trailer, {ghost}},
        {Data, "notify 9", Trailer, {unexpected}},
        {Data, "notify Processing", Trailer, {processing, received}},
    });
}

TEST_F(FaultMatrixTest, WaitingForEachStage) {
    using enum Step;
    struct Stage {
        Step step;
        std::string name;
    };
    for (Stage const& stage : {Stage{Trailer, "Received"},
                               {Checked, "Checked"},
                               {Processing, "Processing"},
                               {Complete, "Complete"}}) {
        auto const cell = [&](std::string const& actions, Lines const& lines) {
            return Fault{stage.step, support::replaced(actions, "STAGE", stage.name), stage.step,
                         lines};
        };
        Lines const honest = honestLines(stage.step);
        Check({
            cell("silent", {tired}),
            cell("close", {tired}),
            cell("reset", {tired}),
            cell("cut 15 STAGE, silent", {tired}),
            cell("garbage 16", {onion}),
            cell("wrongMagic STAGE", {onion}),
            cell("wrongCrc STAGE", {checkItself}),
            cell("notify Error:GhostError", {ghost}),
            cell("notify ErrorAlt:GhostError", {ghost}),
            cell("notify Accepted", {accepted, unexpected}),
            cell("notify 0", {unexpected}),
            cell("notify 9", {unexpected}),
            cell("drip 1 STAGE", honest),
        });
    }
    Check({
        {Trailer,
         "together Received Checked Processing Complete:2",
         Trailer,
         {received, checked, processing, complete, "  The hardware is restarting.", updated}},
    });
}

TEST_F(FaultMatrixTest, EveryExampleEndsAsItSays) {
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(RAVELINK_SCENARIOS)) {
        std::ifstream file(entry.path());
        std::string const text(std::istreambuf_iterator<char>(file), {});
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
                // Seconds that an updater bears; what it does not bear stays longer than its
                // limits.
                action.numbers[0] /= action.verb == device::Verb::wait && end == updated ? 100 : 1;
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
