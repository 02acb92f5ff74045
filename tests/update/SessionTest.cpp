#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <random>

#include "device/Behaviour.h"
#include "tests/core/net/SocketPair.h"
#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/system.h"
#include "tests/update/TestedUpdater.h"
#include "update/session/exchange.h"

namespace {

using namespace device;
using Lines = std::vector<std::string>;

/// Returns bytes that shifts, repetitions and losses change.
std::string contentOf(std::size_t size) {
    std::string content(size, '\0');
    std::generate(content.begin(), content.end(), std::mt19937());
    return content;
}

class SessionTest : public testing::Test {
protected:
    SessionTest() { TestedUpdater::Instance().UseProductTimeouts(); }

    static Lines RunSession(ScenarioDevice const& device, std::string const& path) {
        return TestedUpdater::Instance().RunSession(path, device.Address());
    }

    support::TemporaryDirectory directory_;
};

TEST_F(SessionTest, CompleteUpdates) {
    using Row = std::pair<std::size_t, Lines>;
    for (auto const& [size, transfer] :
         {Row{0, {"- File completely sent: 0.0 B"}}, Row{1, {"- File completely sent: 1.0 B"}},
          Row{262'143, {"- File completely sent: 256.0 KB"}},
          Row{262'144,
              {">   Transferred by now: 256.0 KB", "- File completely sent: 256.0 KB          "}},
          Row{600'001,
              {">   Transferred by now: 256.0 KB", ">   Transferred by now: 512.0 KB          ",
               "- File completely sent: 585.9 KB          "}}}) {
        ScenarioDevice device;
        std::string const content = contentOf(size);
        Lines const lines = RunSession(device, directory_.Write("update.rvl", content));
        // The fault matrix compares the lines before and after.
        ASSERT_EQ(lines.size(), 3 + transfer.size() + 7);
        EXPECT_EQ(Lines(lines.begin() + 3, lines.end() - 7), transfer) << size;
        EXPECT_EQ(device.End(), std::vector{UpdateResult::complete});
        EXPECT_TRUE(device.File() == content) << size;
    }
}

TEST_F(SessionTest, EachAcceptedByteRestartsTheStallTimeout) {
    // The transfer takes longer than the timeout, but no single chunk does.
    TestedUpdater::Instance().timeouts.transferStall = 1000;
    ScenarioDevice device("data = slow 16384 2");
    std::string const content = contentOf(16'000'000);
    EXPECT_EQ(RunSession(device, directory_.Write("update.rvl", content)).back(), updated);
    device.End();
    EXPECT_TRUE(device.File() == content);
}

TEST(SendAll, SleepsWhileADeviceReadsNothing) {
    SocketPair pair;
    ASSERT_TRUE(pair.near.setBlocking(false));
    std::vector<char> const data(16'000'000);
    core::CountDownTimer stall(500ULL);
    std::clock_t const start = std::clock();
    EXPECT_EQ(update::sendAll(pair.near, data.data(), 16'000'000, stall),
              update::SendResult::stalled);
    EXPECT_TRUE(support::onWindows() || std::clock() - start < CLOCKS_PER_SEC / 4);
}

TEST_F(SessionTest, SendsNoMoreThanAnnouncedIfTheFileChanges) {
    std::string const content = contentOf(100'000);
    for (int const size : {150'000, 50'000, -1}) {
        std::string const path = directory_.Write("update.rvl", content);
        ScenarioDevice device([&](StepContext const& context, DeviceConnection& connection) {
            if (context.step == Step::header && size > 0) {
                std::filesystem::resize_file(path, static_cast<unsigned>(size));
            } else if (context.step == Step::header) {
                std::filesystem::remove(path);
            }
            return Behaviour().OnStep(context, connection);
        });
        Lines const lines = RunSession(device, path);
        bool const grows = size > 100'000;
        EXPECT_EQ(device.End(), std::vector{grows ? UpdateResult::complete : UpdateResult::ended});
        if (grows) {
            EXPECT_TRUE(device.File() == content);
            continue;
        }
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[lines.size() - 2],
                  size > 0 ? "*** Error reading from the file: Error occurred reading the file \"" +
                                 path + "\". This is a mess"
                           : "*** Error opening the file: Cannot open the file \"" + path +
                                 "\". Please provide the correct rights");
    }
}

TEST_F(SessionTest, RejectsTooLargeFilesBeforeSendingAnything) {
    std::string const path = directory_.Write("update.rvl", "");
    std::filesystem::resize_file(path, 2'147'483'648);
    ScenarioDevice device;
    Lines const lines = RunSession(device, path);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[2], "*** Update file too big: The file \"" + path +
                            "\" exceeds the maximum of 2147483647 bytes");
    EXPECT_EQ(device.End(), std::vector{UpdateResult::ended});
}

TEST_F(SessionTest, GetResponsePrintsRecordsAndCollectsErrors) {
    SocketPair pair;
    core::StringArray& errors = TestedUpdater::Instance().errors;
    errors.Clear();
    update::UpdateNotification response;
    std::string results;
    auto const receive = [&] {
        int const result = TestedUpdater::Instance().GetResponse(pair.near, response, 20, true);
        results += std::to_string(result) + " ";
    };
    EXPECT_EQ(support::outputOf([&] {
                  for (Notification const& sent : {Notification{5, 2}, {9, 0}, {0x80000002, 12}}) {
                      auto const onWire = DeviceConnection::Encode(sent);
                      pair.far->Send(&onWire, update::recordSize);
                      receive();
                      EXPECT_EQ(response.code, sent.code);
                  }
                  pair.far->Send("123456789012345");
                  receive();
              }),
              "- The update process is complete.\n  The hardware is restarting.\n");
    EXPECT_EQ(results, "0 0 -1 1 ");
    EXPECT_EQ(errors.AsString(),
              "> Wrong file CRC=Please do your math\r\n"
              "Connection timeout=A timeout was reached reading from socket\r\n");
}

}  // namespace
