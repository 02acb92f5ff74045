#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <utility>
#include <vector>

#include "core/crc/crc32.h"
#include "core/net/Socket.h"
#include "tests/device/ScenarioDevice.h"
#include "tests/support/lines.h"
#include "update/protocol/UpdateNotification.h"
#include "update/protocol/UpdateRequest.h"
#include "update/protocol/UpdateTransferHeader.h"
#include "update/protocol/UpdateTransferTrailer.h"

namespace {

using device::Outcome;
using update::DeviceStatus;
using update::UpdateNotification;

/// What an updater sends in one update.
struct Update {
    update::UpdateRequest request;
    update::UpdateTransferHeader header;
    std::string file = "the file";
    update::UpdateTransferTrailer trailer;

    explicit Update(std::uint32_t token) {
        auto const size = static_cast<std::uint32_t>(file.size());
        std::uint32_t const crc =
            core::crc32::update(file.data(), static_cast<int>(file.size()), 0);
        request.fileSize = header.fileSize = trailer.fileSize = size;
        request.fileCrc = trailer.fileCrc = crc;
        header.acceptToken = trailer.acceptToken = token;
    }
};

using Notifications = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

class Client {
public:
    explicit Client(ScenarioDevice const& device) {
        EXPECT_EQ(socket_.Connect(support::replaced(device.Address(), ":", "|").c_str()), 0u);
    }

    template <class Record>
    void Send(Record const& record) {
        Record const onWire = update::swapped(record);
        socket_.Send(&onWire, update::recordSize);
    }
    void Send(std::string const& bytes) { socket_.Send(bytes.c_str()); }

    /// Sends the whole update without looking at the answers.
    void Send(Update const& update) {
        Send(update.request);
        Send(update.header);
        Send(update.file);
        Send(update.trailer);
    }

    /// All notifications until the device ends its side; then we end ours.
    Notifications Receive() {
        Notifications all;
        UpdateNotification onWire;
        auto* const bytes = reinterpret_cast<char*>(&onWire);
        int have = 0;
        for (int got = 0; (got = socket_.Recv(bytes + have, update::recordSize - have)) > 0;) {
            have += got;
            if (have == update::recordSize) {
                UpdateNotification const record = update::swapped(onWire);
                EXPECT_EQ(record.magic, update::wireMagic);
                EXPECT_EQ(record.crc, update::wireCrc(onWire));
                all.emplace_back(record.code, record.value);
                have = 0;
            }
        }
        EXPECT_EQ(have, 0);
        socket_.Close();
        return all;
    }

private:
    core::Socket socket_{core::SocketDomain::IPv4, core::SocketType::stream};
};

Notifications error(DeviceStatus status, Notifications before = {}) {
    before.emplace_back(UpdateNotification::Error, static_cast<std::uint32_t>(status));
    return before;
}

TEST(Conversation, RefusesBadRecordsWithTheMatchingStatus) {
    Notifications const accepted = {{UpdateNotification::Accepted, 1}};
    Notifications const received = {{UpdateNotification::Accepted, 1},
                                    {UpdateNotification::Received, 0}};
    struct Row {
        char const* name;
        std::function<void(Update&)> fault;
        Notifications expected;
    } const rows[] = {
        {"request magic", [](Update& u) { u.request.magic ^= 1; },
         error(DeviceStatus::InvalidMagic)},
        {"request complement", [](Update& u) { u.request.magicComplement ^= 1; },
         error(DeviceStatus::InvalidMagicComplement)},
        {"request size", [](Update& u) { u.request.fileSize = 0x80000000; },
         error(DeviceStatus::DataSizeTooBig)},
        {"header magic", [](Update& u) { u.header.magic ^= 1; },
         error(DeviceStatus::InvalidMagic, accepted)},
        {"header token", [](Update& u) { u.header.acceptToken ^= 1; },
         error(DeviceStatus::InvalidPassword, accepted)},
        {"header constant", [](Update& u) { u.header.headerConstant ^= 1; },
         error(DeviceStatus::InvalidVersion, accepted)},
        {"header size", [](Update& u) { u.header.fileSize ^= 1; },
         error(DeviceStatus::InvalidDataSize, accepted)},
        {"trailer magic", [](Update& u) { u.trailer.magic ^= 1; },
         error(DeviceStatus::InvalidMagic, accepted)},
        {"trailer size", [](Update& u) { u.trailer.fileSize ^= 1; },
         error(DeviceStatus::InvalidDataSize, accepted)},
        {"trailer CRC", [](Update& u) { u.trailer.fileCrc ^= 1; },
         error(DeviceStatus::InvalidCrc, accepted)},
        {"trailer token", [](Update& u) { u.trailer.acceptToken ^= 1; },
         error(DeviceStatus::InvalidPassword, accepted)},
        {"file", [](Update& u) { u.file[3] = '?'; }, error(DeviceStatus::WrongFileCrc, received)},
    };
    for (Row const& row : rows) {
        ScenarioDevice device;
        Client client(device);
        Update update(1);
        row.fault(update);
        client.Send(update);
        EXPECT_EQ(client.Receive(), row.expected) << row.name;
        EXPECT_EQ(device.End(), std::vector{Outcome::refused}) << row.name;
    }
}

TEST(Conversation, OneUpdateAfterAnotherWhateverBecameOfTheLast) {
    ScenarioDevice device;
    { Client goesAwayAtOnce(device); }
    {
        Client goesAwayEarly(device);
        goesAwayEarly.Send(Update(2).request);
    }
    for (std::uint32_t const token : {3u, 4u}) {
        Client client(device);
        client.Send(Update(token));
        EXPECT_EQ(
            client.Receive(),
            (Notifications{{UpdateNotification::Accepted, token},
                           {UpdateNotification::Received, 0},
                           {UpdateNotification::Checked, 0},
                           {UpdateNotification::Processing, 0},
                           {UpdateNotification::Complete, UpdateNotification::FirmwareRestart}}));
    }
    EXPECT_EQ(device.End(4),
              (std::vector{Outcome::ended, Outcome::ended, Outcome::complete, Outcome::complete}));
    EXPECT_EQ(device.File(), "the filethe file");
}

TEST(Conversation, ASilentUpdaterIsToldSo) {
    device::DeviceLimits limits;
    limits.silence = 100;
    ScenarioDevice device({}, limits);
    Client client(device);
    Update const update(1);
    client.Send(update.request);
    client.Send(update.header);
    client.Send(update.file.substr(1));
    EXPECT_EQ(client.Receive(), error(DeviceStatus::Timeout, {{UpdateNotification::Accepted, 1}}));
    EXPECT_EQ(device.End(), std::vector{Outcome::silent});
}

TEST(Conversation, AStopBreaksOffWhatIsUnderWay) {
    std::promise<void> connected;
    ScenarioDevice device([&](device::Moment const&, device::Wire&) {
        connected.set_value();
        return true;
    });
    Client const client(device);
    connected.get_future().wait();
    EXPECT_EQ(device.End(0), std::vector{Outcome::stopped});
}

}  // namespace
