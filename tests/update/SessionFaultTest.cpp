#include <gtest/gtest.h>

#include <algorithm>

#include "device/Behaviour.h"
#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"
#include "tests/update/TestedUpdater.h"
#include "update/protocol/UpdateNotification.h"

namespace {

using device::Moment;
using device::Step;
using device::Wire;
using update::UpdateNotification;
using Lines = std::vector<std::string>;
using Act = ScenarioDevice::Act;

int const untilStopped = 1'000'000;  ///< ms, ended by the device's stop

/// An honest device but for one step.
Act at(Step step, std::function<bool(Wire&)> const& fault) {
    return [=](Moment const& moment, Wire& wire) {
        return moment.step == step ? fault(wire) : device::Behaviour().Act(moment, wire);
    };
}

bool staySilent(Wire& wire) {
    return wire.Pause(untilStopped);
}

bool close(Wire&) {
    return false;
}

bool reset(Wire& wire) {
    wire.Reset();
    return false;
}

std::function<bool(Wire&)> say(std::uint32_t code, std::uint32_t value) {
    return [=](Wire& wire) { return wire.Notify(code, value); };
}

/// Sends the bytes, given in hexadecimal, and then nothing more.
std::function<bool(Wire&)> sendOnly(std::string const& hex) {
    return [=](Wire& wire) {
        std::string bytes;
        for (std::size_t i = 0; i < hex.size(); i += 2) {
            bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
        }
        return wire.Send(bytes.data(), static_cast<int>(bytes.size())) && staySilent(wire);
    };
}

// Notifications as they travel; the CRCs are another implementation's.
std::string const acceptedBytes = "E8B47CC30000000100000001";
std::string const acceptedCrc = "FD46FDC5";

std::string const noAnswer = "*** Connection timeout: A timeout was reached reading from socket";

std::string const tired =
    "*** Timeout error: Maybe the system is still updating, but we waited 5 minutes and we are "
    "tired";

Lines tailOf(Lines const& lines, std::size_t count) {
    return lines.size() < count ? lines
                                : Lines(lines.end() - static_cast<long>(count), lines.end());
}

/// The last error of a session's output, which an empty line follows.
std::string lastErrorOf(Lines const& lines) {
    return lines.size() < 2 || !lines.back().empty() ? "" : lines[lines.size() - 2];
}

class SessionFaultTest : public testing::Test {
protected:
    SessionFaultTest() { TestedUpdater::Instance().UseProductLimits(); }

    update::SessionLimits& Limits() { return TestedUpdater::Instance().limits; }

    /// What the updater prints, for a file of size bytes.
    Lines RunSession(Act const& act, std::size_t size = 1) {
        ScenarioDevice device(act);
        path_ = folder_.Write("update.rvl", std::string(size, 'x'));
        return TestedUpdater::Instance().RunSession(path_, device.Address());
    }

    support::TemporaryFolder folder_;
    std::string path_;
};

TEST_F(SessionFaultTest, UnusualAnswers) {
    std::string const connected = "  Connected!";
    std::string const accepted = "- The device has accepted our request.";
    std::string const received = "- The device has received the update file.";
    std::string const wait = "  The update process may take a while. Please wait...";
    std::string const busy =
        "*** > System is busy: The system is now busy and the update procedure must be postponed";
    std::string const stranger =
        "*** The device do not recognize us: Something very bad happened here";
    std::string const unexpected =
        "*** Unexpected error: We received something unexpected. Check the device";
    std::string const onion = "*** Invalid response: The server responded onion for garlic";
    std::string const checkItself = "*** Invalid CRC: The server response cannot even check itself";
    std::string const target = "*** > Invalid target: This update is not applicable to this device";
    std::string const complete = "- The update process is complete.";
    std::string const updated = "The device is updated and it will restart itself if needed.";
    struct Row {
        Step step;
        std::function<bool(Wire&)> fault;
        Lines lines;
    } const rows[] = {
        {Step::Complete, say(5, 1), {complete, "  The firmware is restarting.", updated}},
        {Step::Complete, say(5, 2), {complete, "  The hardware is restarting.", updated}},
        {Step::Complete,
         say(5, 3),
         {complete, "  Please power off the device and then power on again.", updated}},
        {Step::Complete, say(5, 7), {complete, updated}},
        {Step::Request, staySilent, {connected, noAnswer}},
        {Step::Request, close, {connected, noAnswer}},
        {Step::Request, reset, {connected, noAnswer}},
        {Step::Request, sendOnly(acceptedBytes + acceptedCrc.substr(0, 6)), {connected, noAnswer}},
        {Step::Request, sendOnly("E8B47CC20000000100000001" + acceptedCrc), {connected, onion}},
        {Step::Request, sendOnly(acceptedBytes + "00000000"), {connected, checkItself}},
        {Step::Request, say(0x80000001, 6), {connected, busy}},
        {Step::Request, say(0x80000002, 6), {connected, busy}},
        {Step::Request, say(2, 0), {connected, received, stranger}},
        {Step::Request, say(9, 0), {connected, stranger}},
        {Step::Header, say(0x80000001, 15), {connected, accepted, target}},
        {Step::Received, say(1, 0), {wait, accepted, unexpected}},
        {Step::Received, say(9, 0), {wait, unexpected}},
        {Step::Received, say(0, 0), {wait, unexpected}},
        {Step::Checked,
         say(0x80000002, 12),
         {wait, received, "*** > Wrong file CRC: Please do your math"}},
    };
    for (Row const& row : rows) {
        Limits() = {};
        (row.lines.back() == noAnswer ? Limits().requestAnswer : Limits().headerAnswer) = 150;
        if (row.step == Step::Header) {
            Limits().headerAnswer = 10'000;
        }
        Lines expected = row.lines;
        if (row.step != Step::Complete) {
            expected.push_back("");
        }
        EXPECT_EQ(tailOf(RunSession(at(row.step, row.fault)), expected.size()), expected)
            << row.lines.back();
    }
    // A reset that comes before or behind our request: either end is an error.
    EXPECT_EQ(lastErrorOf(RunSession(at(Step::Connected, reset))).substr(0, 4), "*** ");
}

TEST_F(SessionFaultTest, DuringTheTransfer) {
    // More than the system takes from us while the device reads nothing.
    std::size_t const size = 16'000'000;
    Limits().transferStall = 300;
    for (bool const stall : {true, false}) {
        Lines const lines = RunSession(at(Step::Data, stall ? staySilent : reset), size);
        std::string const file = " of \"" + path_ + "\". ";
        EXPECT_EQ(lastErrorOf(lines),
                  stall
                      ? "*** Timeout sending the file: It was impossible to complete the transfer" +
                            file + "This is a double mess"
                      : "*** Error sending the file: It was impossible to send a bucket of data" +
                            file + "This is a triple mess");
        EXPECT_EQ(std::count(lines.begin(), lines.end(), noAnswer), 0)
            << "silence at the header leaves no error behind";
    }
}

TEST_F(SessionFaultTest, ASlowDeviceIsNoStall) {
    // Longer in all than the stall limit, but never as long between two pieces.
    Limits().transferStall = 1000;
    int pauses = 0;
    Act const slow = [&](Moment const& moment, Wire& wire) {
        bool const pause = moment.step == Step::Data && moment.bytes % 1'048'576 < 16'384;
        return (!pause || (++pauses, wire.Pause(100))) && device::Behaviour().Act(moment, wire);
    };
    EXPECT_EQ(tailOf(RunSession(slow, 16'000'000), 1),
              Lines{"The device is updated and it will restart itself if needed."});
    EXPECT_GT(pauses, 10);
}

TEST_F(SessionFaultTest, SilenceToTheEndIsCounted) {
    Limits().completion = 700;
    Limits().notification = 150;
    for (auto const& silence : {staySilent, close, reset}) {
        Lines const lines = RunSession(at(Step::Received, silence));
        auto const stillUpdating =
            std::count_if(lines.begin(), lines.end(), [](std::string const& line) {
                return line.find("  System is still updating. ") == 0 &&
                       line.find(" until timeout") != std::string::npos;
            });
        // 700 ms in slices of 150: as many lines as errors, and not one a pass of a busy loop.
        EXPECT_GE(stillUpdating, 1);
        EXPECT_LE(stillUpdating, 5);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), noAnswer), stillUpdating);
        EXPECT_EQ(lastErrorOf(lines), tired);
    }
}

TEST_F(SessionFaultTest, ProgressDoesNotProlongTheCompletion) {
    Limits().completion = 700;
    auto const process = [](Wire& wire) {
        while (wire.Notify(UpdateNotification::Processing, 0) && wire.Pause(50)) {
        }
        return false;
    };
    Lines const lines = RunSession(at(Step::Processing, process));
    EXPECT_EQ(lastErrorOf(lines), tired);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), noAnswer), 0);
}

TEST_F(SessionFaultTest, NotificationsInDripsAndInOnePiece) {
    UpdateNotification records[4];
    std::uint32_t const codes[] = {2, 3, 4, 5};
    for (int i = 0; i < 4; ++i) {
        records[i] = update::swapped(UpdateNotification{update::wireMagic, codes[i], 2});
        records[i].crc = update::bigEndian(update::wireCrc(records[i]));
    }
    auto const* const bytes = reinterpret_cast<char const*>(records);
    for (int const piece : {1, 7, 64}) {
        auto const drip = [&](Wire& wire) {
            for (int i = 0; i < 64; i += piece) {
                wire.Send(bytes + i, std::min(piece, 64 - i));
                wire.Pause(piece < 16 ? 2 : 0);
            }
            return false;
        };
        EXPECT_EQ(tailOf(RunSession(at(Step::Received, drip)), 6),
                  (Lines{"- The device has received the update file.",
                         "- The device has checked the update file.",
                         "- The device is processing the update file.",
                         "- The update process is complete.", "  The hardware is restarting.",
                         "The device is updated and it will restart itself if needed."}))
            << piece;
    }
}

}  // namespace
