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
using Lines = std::vector<std::string>;

std::string const accepted = "- The device has accepted our request.";
std::string const received = "- The device has received the update file.";
std::string const checked = "- The device has checked the update file.";
std::string const processing = "- The device is processing the update file.";
std::string const complete = "- The update process is complete.";

std::string const noAnswer = "*** Connection timeout: A timeout was reached reading from socket";
std::string const onion = "*** Invalid response: The server responded onion for garlic";
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

/// The steps as scenarios name them, and what the updater prints of each with an honest device, for
/// a file of one byte.
std::pair<std::string, Lines> const steps[] = {
    {"connect", {"- Connecting to: 127.0.0.1:PORT ...", "  Connected!"}},
    {"request", {accepted}},
    {"header", {}},
    {"data",
     {"- File completely sent: 1.0 B", "  The update process may take a while. Please wait..."}},
    {"trailer", {received}},
    {"checked", {checked}},
    {"processing", {processing}},
    {"complete", {complete, "  The firmware is restarting.", updated}},
};

/// A step, the honest notification next to it, and the step at which the updater reads that.
struct Place {
    Step step;
    std::string honest;
    Step shows;
} const places[] = {{Step::connect, "Accepted", Step::request},
                    {Step::request, "Accepted", Step::request},
                    {Step::header, "Accepted", Step::header},
                    {Step::data, "Received", Step::trailer},
                    {Step::trailer, "Received", Step::trailer},
                    {Step::checked, "Checked", Step::checked},
                    {Step::processing, "Processing", Step::processing},
                    {Step::complete, "Complete", Step::complete}};

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
    /// What the updater prints in a session that is expected to end with a line. Only the limit
    /// that is to run out is short, so that no slow machine runs into another.
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
        // A transfer fails only with more than a system takes while the device reads nothing.
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

    /// Each wait in vain has printed one line and left one error: as many as time allowed.
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

// The examples, of which each is run below, have further cells of the matrix.

TEST_F(FaultMatrixTest, BadNotificationsAnywhere) {
    for (auto const& [step, honest, shows] : places) {
        bool const answersHeader = step == Step::header;
        Check({
            {step, "garbage 16", shows, {onion}, answersHeader},
            {step, "wrongMagic " + honest, shows, {onion}, answersHeader},
            {step, "wrongCrc " + honest, shows, {checkItself}, answersHeader},
            {step, "notify Error:GhostError", shows, {ghost}, answersHeader},
            {step, "notify ErrorAlt:GhostError", shows, {ghost}, answersHeader},
        });
    }
}

TEST_F(FaultMatrixTest, BeforeTheTransfer) {
    Check({
        {Step::connect, "close", Step::request, {noAnswer}},
        {Step::connect, "cut 15 Accepted", Step::request, {checkItself}},
        {Step::connect, "notify Accepted", Step::request, {accepted, accepted}, true},
        {Step::request, "reset", Step::request, {noAnswer}},
        {Step::request, "cut 1 Accepted, close", Step::request, {noAnswer}},
        {Step::request, "notify Complete:9", Step::request, {complete, stranger}},
        {Step::request, "notify 0", Step::request, {stranger}},
        {Step::request, "notify Error:0", Step::request, {unknown}},
        {Step::request, "notify ErrorAlt:4294967295", Step::request, {unknown}},
        {Step::request, "drip 1 Accepted", Step::request, {accepted}},
        {Step::request,
         "together Accepted Processing",
         Step::request,
         {accepted, processing},
         true},
        {Step::request,
         "together Accepted Error:GhostError",
         Step::request,
         {accepted, ghost},
         true},
    });
    // The reset comes before or behind our request.
    device::Scenario reset = ScenarioDevice::scenarioOf("connect = reset");
    Lines const lines = RunSession(reset, noAnswer);
    EXPECT_TRUE(lines[2] == noAnswer ||
                lines[2] == "*** Unable to communicate: Error sending data to the device")
        << lines[2];
}

TEST_F(FaultMatrixTest, WhileTheFileIsUnderWay) {
    std::string const powerCycle = "  Please power off the device and then power on again.";
    Check({
        {Step::header, "close", Step::trailer, {tired}},
        {Step::header, "reset", Step::data, {notSent}, true},
        {Step::header, "cut 15 Accepted, silent", Step::trailer, {tired}},
        {Step::header, "notify 9", Step::header, {}, true},
        {Step::header, "notify Complete:3", Step::header, {complete, powerCycle}, true},
        {Step::header, "drip 1 Accepted", Step::header, {accepted}, true},
        {Step::data, "wait 86400000", Step::data, {stalled}},
        {Step::data, "cut 15 Processing", Step::trailer, {checkItself}},
        {Step::data, "notify 9", Step::trailer, {unexpected}},
        {Step::data, "notify Processing", Step::trailer, {processing, received}},
    });
}

TEST_F(FaultMatrixTest, WaitingForEachStage) {
    for (auto const& [step, name, shows] : places) {
        if (step < Step::trailer) {
            continue;
        }
        Check({
            {step, "close", step, {tired}},
            {step, "reset", step, {tired}},
            {step, "cut 15 " + name + ", silent", step, {tired}},
            {step, "notify Accepted", step, {accepted, unexpected}},
            {step, "notify 9", step, {unexpected}},
            {step, "drip 1 " + name, step, steps[static_cast<int>(step)].second},
        });
    }
}

TEST_F(FaultMatrixTest, EveryExampleEndsAsItSays) {
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
                // Seconds that an updater bears; what it does not bear stays longer than its
                // timeouts.
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
