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

class SessionFaultTest : public testing::Test {
protected:
    SessionFaultTest() { TestedUpdater::Instance().UseProductLimits(); }

    update::SessionLimits& Limits() { return TestedUpdater::Instance().limits; }

    /// What the updater prints behind "  Connected!", for a file of size bytes.
    Lines RunSession(Act const& act, std::size_t size) {
        ScenarioDevice device(act);
        path_ = folder_.Write("update.rvl", std::string(size, 'x'));
        Lines lines = TestedUpdater::Instance().RunSession(path_, device.Address());
        auto const connected = std::find(lines.begin(), lines.end(), "  Connected!");
        EXPECT_NE(connected, lines.end());
        return connected == lines.end() ? lines : Lines(connected + 1, lines.end());
    }

    support::TemporaryFolder folder_;
    std::string path_;
};

TEST_F(SessionFaultTest, BeforeTheTransfer) {
    std::string const accepted = "- The device has accepted our request.";
    std::string const busy =
        "*** > System is busy: The system is now busy and the update procedure must be postponed";
    struct Row {
        char const* name;
        Act act;
        Lines lines;
    } const rows[] = {
        {"silent", at(Step::Request, staySilent), {noAnswer, ""}},
        {"closed", at(Step::Request, close), {noAnswer, ""}},
        {"reset", at(Step::Request, reset), {noAnswer, ""}},
        {"reset at once", at(Step::Connected, reset), {}},
        {"15 bytes",
         at(Step::Request, sendOnly(acceptedBytes + acceptedCrc.substr(0, 6))),
         {noAnswer, ""}},
        {"wrong magic",
         at(Step::Request, sendOnly("E8B47CC20000000100000001" + acceptedCrc)),
         {"*** Invalid response: The server responded onion for garlic", ""}},
        {"wrong CRC",
         at(Step::Request, sendOnly(acceptedBytes + "00000000")),
         {"*** Invalid CRC: The server response cannot even check itself", ""}},
        {"error", at(Step::Request, say(0x80000001, 6)), {busy, ""}},
        {"other error", at(Step::Request, say(0x80000002, 6)), {busy, ""}},
        {"not accepted",
         at(Step::Request, say(UpdateNotification::Received, 0)),
         {"- The device has received the update file.",
          "*** The device do not recognize us: Something very bad happened here", ""}},
        {"unknown code",
         at(Step::Request, say(9, 0)),
         {"*** The device do not recognize us: Something very bad happened here", ""}},
        {"header refused",
         at(Step::Header, say(0x80000001, 15)),
         {accepted, "*** > Invalid target: This update is not applicable to this device", ""}},
    };
    for (Row const& row : rows) {
        bool const waits = row.lines.empty() || row.lines[0] == noAnswer;
        Limits().requestAnswer = waits ? 150 : update::SessionLimits().requestAnswer;
        Limits().headerAnswer = update::SessionLimits().headerAnswer;
        Lines const lines = RunSession(row.act, 1);
        if (!row.lines.empty()) {
            EXPECT_EQ(lines, row.lines) << row.name;
            continue;
        }
        // The reset may come before or behind our request: either end is an error.
        ASSERT_EQ(lines.size(), 2u) << row.name;
        EXPECT_EQ(lines[0].substr(0, 4), "*** ") << row.name;
    }
}

TEST_F(SessionFaultTest, DuringTheTransfer) {
    // More than the system takes from us while the device reads nothing.
    std::size_t const size = 16'000'000;
    Limits().transferStall = 300;
    for (bool const stall : {true, false}) {
        Lines const lines = RunSession(at(Step::Data, stall ? staySilent : reset), size);
        ASSERT_GE(lines.size(), 3u);
        EXPECT_EQ(lines[lines.size() - 2],
                  stall ? "*** Timeout sending the file: It was impossible to complete the "
                          "transfer of \"" +
                              path_ + "\". This is a double mess"
                        : "*** Error sending the file: It was impossible to send a bucket of data "
                          "of \"" +
                              path_ + "\". This is a triple mess");
        EXPECT_EQ(std::count(lines.begin(), lines.end(), noAnswer), 0)
            << "silence at the header leaves no error behind";
    }
}

TEST_F(SessionFaultTest, ASlowDeviceIsNoStall) {
    // Longer in all than the stall limit, but never as long between two pieces.
    Limits().transferStall = 1000;
    int pauses = 0;
    Lines const lines = RunSession(
        [&](Moment const& moment, Wire& wire) {
            bool const slow = moment.step == Step::Data && moment.bytes % 1'048'576 < 16'384;
            return (!slow || (++pauses, wire.Pause(100))) && device::Behaviour().Act(moment, wire);
        },
        16'000'000);
    EXPECT_GT(pauses, 10);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "The device is updated and it will restart itself if needed.");
}

TEST_F(SessionFaultTest, AfterTheTrailer) {
    std::string const waiting = "  The update process may take a while. Please wait...";
    struct Row {
        char const* name;
        Act act;
        Lines lines;
    } const rows[] = {
        {"wrong file CRC",
         at(Step::Checked, say(0x80000002, 12)),
         {"- The device has received the update file.", "*** > Wrong file CRC: Please do your math",
          ""}},
        {"accepted again",
         at(Step::Received, say(UpdateNotification::Accepted, 0)),
         {"- The device has accepted our request.",
          "*** Unexpected error: We received something unexpected. Check the device", ""}},
        {"unknown code",
         at(Step::Received, say(9, 0)),
         {"*** Unexpected error: We received something unexpected. Check the device", ""}},
        {"code 0",
         at(Step::Received, say(0, 0)),
         {"*** Unexpected error: We received something unexpected. Check the device", ""}},
    };
    for (Row const& row : rows) {
        Lines const lines = RunSession(row.act, 1);
        auto const begin = std::find(lines.begin(), lines.end(), waiting);
        ASSERT_NE(begin, lines.end()) << row.name;
        EXPECT_EQ(Lines(begin + 1, lines.end()), row.lines) << row.name;
    }
}

TEST_F(SessionFaultTest, SilenceToTheEndIsCounted) {
    Limits().completion = 700;
    Limits().notification = 150;
    for (auto const& silence : {staySilent, close, reset}) {
        Lines const lines = RunSession(at(Step::Received, silence), 1);
        auto const stillUpdating =
            std::count_if(lines.begin(), lines.end(), [](std::string const& line) {
                return line.find("  System is still updating. ") == 0 &&
                       line.find(" until timeout") != std::string::npos;
            });
        // 700 ms in slices of 150: as many lines as errors, and not one a pass of a busy loop.
        EXPECT_GE(stillUpdating, 1);
        EXPECT_LE(stillUpdating, 5);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), noAnswer), stillUpdating);
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[lines.size() - 2],
                  "*** Timeout error: Maybe the system is still updating, but we waited 5 minutes "
                  "and we are tired");
    }
}

TEST_F(SessionFaultTest, ProgressDoesNotProlongTheCompletion) {
    Limits().completion = 700;
    Lines const lines =
        RunSession(at(Step::Processing,
                      [](Wire& wire) {
                          while (wire.Notify(UpdateNotification::Processing, 0) && wire.Pause(50)) {
                          }
                          return false;
                      }),
                   1);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2],
              "*** Timeout error: Maybe the system is still updating, but we waited 5 minutes and "
              "we are tired");
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
        Lines const lines = RunSession(at(Step::Received,
                                          [&](Wire& wire) {
                                              for (int i = 0; i < 64; i += piece) {
                                                  wire.Send(bytes + i, std::min(piece, 64 - i));
                                                  wire.Pause(piece < 16 ? 2 : 0);
                                              }
                                              return false;
                                          }),
                                       1);
        ASSERT_GE(lines.size(), 6u) << piece;
        EXPECT_EQ(Lines(lines.end() - 6, lines.end()),
                  (Lines{"- The device has received the update file.",
                         "- The device has checked the update file.",
                         "- The device is processing the update file.",
                         "- The update process is complete.", "  The hardware is restarting.",
                         "The device is updated and it will restart itself if needed."}))
            << piece;
    }
}

}  // namespace
