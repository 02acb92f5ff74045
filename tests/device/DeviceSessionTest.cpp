#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <vector>

#include "core/crc/crc32.h"
#include "core/net/Socket.h"
#include "tests/core/archive/golden.h"
#include "tests/device/ScenarioDevice.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"
#include "update/protocol/records.h"

namespace {

using device::UpdateResult;
using update::DeviceStatus;

template <class Record>
std::string onWire(Record const& record) {
    Record const swapped = update::swapped(record);
    return {reinterpret_cast<char const*>(&swapped), update::recordSize};
}

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

    std::string Bytes() const { return onWire(request) + onWire(header) + file + onWire(trailer); }
};

struct Client : core::Socket {
    explicit Client(ScenarioDevice const& device)
        : Socket(core::SocketDomain::IPv4, core::SocketType::stream) {
        EXPECT_EQ(Connect(support::replaced(device.Address(), ":", "|").c_str()), 0u);
    }

    /// Sends all without looking at the answers; these, up to the end of the device's side.
    std::string Answers(std::string const& bytes) {
        Send(bytes.data(), static_cast<int>(bytes.size()));
        std::string received;
        for (char byte = 0; Recv(&byte, 1) == 1;) {
            received += byte;
        }
        return received;
    }
};

/// The first so many of what an honest device says, and a refusal.
std::string answers(std::size_t honest, std::optional<DeviceStatus> refusal,
                    std::uint32_t token = 1) {
    using Said = update::UpdateNotification;
    std::vector<Said> all = {{.code = Said::Accepted, .value = token},
                             {.code = Said::Received},
                             {.code = Said::Checked},
                             {.code = Said::Processing},
                             {.code = Said::Complete, .value = Said::FirmwareRestart}};
    all.resize(honest);
    if (refusal) {
        all.push_back({.code = Said::Error, .value = static_cast<std::uint32_t>(*refusal)});
    }
    std::string bytes;
    for (Said& record : all) {
        record.magic = update::wireMagic;
        record.crc = update::wireCrc(update::swapped(record));
        bytes += onWire(record);
    }
    return bytes;
}

TEST(DeviceSession, RefusesBadRecordsWithTheMatchingStatus) {
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
        Update update(1);
        row.fault(update);
        EXPECT_EQ(Client(device).Answers(update.Bytes()), answers(row.honest, row.status))
            << &row - rows;
        EXPECT_EQ(device.End(), std::vector{UpdateResult::rejected}) << &row - rows;
    }
}

TEST(DeviceSession, OneUpdateAfterAnotherWhateverBecameOfTheLast) {
    support::TemporaryDirectory const folder;
    ScenarioDevice device(
        [](device::StepContext const& context, device::DeviceConnection& connection) {
            if (context.token == 3 && context.step == device::Step::trailer) {
                throw std::bad_alloc();
            }
            return device::Behaviour().OnStep(context, connection);
        },
        {}, {false, folder.Path()});
    { Client goesAwayAtOnce(device); }
    {
        Client goesAwayEarly(device);
        goesAwayEarly.Send(onWire(Update(2).request).data(), update::recordSize);
    }
    // The numbers of stored files go on after those that exist.
    std::string const stored = "127.0.0.1-" + device.Port() + "-";
    for (char const* const number : {"1", "2", "4"}) {
        folder.Write(stored + number + ".rvl", "old");
    }
    EXPECT_EQ(Client(device).Answers(Update(3).Bytes()), answers(1, {}, 3));
    for (std::uint32_t const token : {4u, 5u}) {
        EXPECT_EQ(Client(device).Answers(Update(token).Bytes()), answers(5, {}, token));
        EXPECT_EQ(support::contentOf(folder.PathOf(stored + std::to_string(token + 1) + ".rvl")),
                  "the file");
    }
    EXPECT_EQ(device.End(5),
              (std::vector{UpdateResult::ended, UpdateResult::ended, UpdateResult::exhausted,
                           UpdateResult::complete, UpdateResult::complete}));
    EXPECT_EQ(device.File(), "the filethe filethe file");
}

TEST(DeviceSession, TakesNothingButSoundArchivesWhereToldSo) {
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
          Row{golden::withValidCrc(changed(24)), InvalidDataSize},
          Row{"no archive", InvalidDataSize}, Row{"the file, which is none", InvalidMagic},
          Row{changed(11), InvalidVersion}, Row{changed(sound.size() - 1), InvalidMagic},
          Row{changed(1000), WrongFileCrc}}) {
        ScenarioDevice device({}, {}, {true, {}});
        EXPECT_EQ(Client(device).Answers(Update(1, row.bytes).Bytes()),
                  answers(row.status ? 2 : 5, row.status));
        device.End();
    }
}

TEST(DeviceSession, FollowsItsScenario) {
    std::string const request = onWire(Update(1).request);
    ScenarioDevice garbage("request = garbage 3, notify Checked, close");
    EXPECT_EQ(Client(garbage).Answers(request).substr(3),
              answers(3, {}).substr(2 * update::recordSize));
    EXPECT_EQ(garbage.End(), std::vector{UpdateResult::aborted});
    for (char const* const way : {"together", "drip 0"}) {
        ScenarioDevice refusing("request = " + std::string(way) + " Error, close");
        Client(refusing).Answers(request);
        EXPECT_EQ(refusing.End(), std::vector{UpdateResult::rejected});
    }

    ScenarioDevice silent("connect = silent");
    EXPECT_FALSE(Client(silent).CanRecv(100));
    EXPECT_EQ(silent.End(), std::vector{UpdateResult::aborted});

    ScenarioDevice late("connect = slow 10 0\ndata = after 10, notify Checked, after 20, close");
    std::string const longer = Update(1, std::string(25, 'x')).Bytes();
    EXPECT_EQ(Client(late).Answers(longer).size(), 2U * update::recordSize);
    late.End();
    EXPECT_EQ(late.File().size(), 20U) << "due in the data that hold the byte";
}

TEST(DeviceSession, ASilentUpdaterIsToldSo) {
    device::DeviceTimeouts timeouts;
    timeouts.idle = 100;
    timeouts.close = 600'000;  // no wait: the device ends its side first
    for (std::size_t const sent : {15u, 31u, 39u, 55u}) {
        ScenarioDevice device({}, timeouts);
        EXPECT_EQ(Client(device).Answers(Update(1).Bytes().substr(0, sent)),
                  answers(sent < update::recordSize ? 0 : 1, DeviceStatus::Timeout));
        EXPECT_EQ(device.End(), std::vector{UpdateResult::timedOut});
    }
}

TEST(DeviceSession, AStopBreaksOffWhatIsUnderWay) {
    std::promise<void> connected;
    ScenarioDevice device([&](device::StepContext const&, device::DeviceConnection&) {
        connected.set_value();
        return true;
    });
    Client const client(device);
    connected.get_future().wait();
    EXPECT_EQ(device.End(0), std::vector{UpdateResult::stopped});
}

}  // namespace
