#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <utility>
#include <vector>

#include "core/crc/crc32.h"
#include "core/net/Socket.h"
#include "tests/core/archive/golden.h"
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
    std::string file;
    update::UpdateTransferTrailer trailer;

    explicit Update(std::uint32_t token, std::string const& content = "the file") : file(content) {
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
    void Send(std::string const& bytes) {
        socket_.Send(bytes.data(), static_cast<int>(bytes.size()));
    }

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

/// The first so many of what an honest device says, and a refusal.
Notifications refusal(std::size_t honest, DeviceStatus status) {
    Notifications all = {{UpdateNotification::Accepted, 1}, {UpdateNotification::Received, 0}};
    all.resize(honest);
    all.emplace_back(UpdateNotification::Error, static_cast<std::uint32_t>(status));
    return all;
}

TEST(Conversation, RefusesBadRecordsWithTheMatchingStatus) {
    using enum DeviceStatus;
    struct Row {
        std::function<void(Update&)> fault;
        std::size_t honest;
        DeviceStatus status;
    } const rows[] = {
        {[](Update& u) { u.request.magic ^= 1; }, 0, InvalidMagic},
        {[](Update& u) { u.request.magicComplement ^= 1; }, 0, InvalidMagicComplement},
        {[](Update& u) { u.request.fileSize = 0x80000000; }, 0, DataSizeTooBig},
        {[](Update& u) { u.header.magic ^= 1; }, 1, InvalidMagic},
        {[](Update& u) { u.header.acceptToken ^= 1; }, 1, InvalidPassword},
        {[](Update& u) { u.header.headerConstant ^= 1; }, 1, InvalidVersion},
        {[](Update& u) { u.header.fileSize ^= 1; }, 1, InvalidDataSize},
        {[](Update& u) { u.trailer.magic ^= 1; }, 1, InvalidMagic},
        {[](Update& u) { u.trailer.fileSize ^= 1; }, 1, InvalidDataSize},
        {[](Update& u) { u.trailer.fileCrc ^= 1; }, 1, InvalidCrc},
        {[](Update& u) { u.trailer.acceptToken ^= 1; }, 1, InvalidPassword},
        {[](Update& u) { u.file[3] = '?'; }, 2, WrongFileCrc},
    };
    for (Row const& row : rows) {
        ScenarioDevice device;
        Client client(device);
        Update update(1);
        row.fault(update);
        client.Send(update);
        EXPECT_EQ(client.Receive(), refusal(row.honest, row.status)) << &row - rows;
        EXPECT_EQ(device.End(), std::vector{Outcome::refused}) << &row - rows;
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

TEST(Conversation, TakesNothingButSoundArchivesWhereToldSo) {
    golden::Archive archive;
    archive.version = 0x00010000;
    archive.files = {{u"a", u"", u"", u"", u"", 0, 0, "data"}};
    std::string const sound = bytesOf(archive);
    auto const changed = [&](std::size_t at) {
        std::string bytes = sound;
        ++bytes[at];
        return bytes;
    };
    struct Row {
        std::string bytes;
        std::optional<DeviceStatus> status;
    };
    using enum DeviceStatus;
    for (Row const& row :  // the one whose CRC is right has a wrong offset
         {Row{sound, {}}, Row{"", InvalidDataSize}, Row{sound.substr(0, 1000), InvalidDataSize},
          Row{golden::withSoundCrc(changed(24)), InvalidDataSize},
          Row{"no archive", InvalidDataSize}, Row{"the file, which is none", InvalidMagic},
          Row{changed(11), InvalidVersion}, Row{changed(sound.size() - 1), InvalidMagic},
          Row{changed(1000), WrongFileCrc}}) {
        ScenarioDevice device({}, {}, {true, {}});
        Client client(device);
        client.Send(Update(1, row.bytes));
        Notifications const received = client.Receive();
        if (row.status) {
            EXPECT_EQ(received, refusal(2, *row.status));
        } else {
            EXPECT_EQ(received.back().first, UpdateNotification::Complete);
        }
        device.End();
    }
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
    EXPECT_EQ(client.Receive(), refusal(1, DeviceStatus::Timeout));
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
