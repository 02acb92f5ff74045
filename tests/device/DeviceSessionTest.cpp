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

/// The data that an updater sends in one update.
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

    /// Sends all bytes, then returns the answers up to the end of the connection.
    std::string Answers(std::string const& bytes) {
        Send(bytes.data(), static_cast<int>(bytes.size()));
        std::string received;
        for (char byte = 0; Recv(&byte, 1) == 1;) {
            received += byte;
        }
        return received;
    }
};

/// Returns the first stages that a conforming device reports, then an error.
std::string answers(std::size_t stages, std::optional<DeviceStatus> error,
                    std::uint32_t token = 1) {
    using Record = update::UpdateNotification;
    std::vector<Record> all = {{.code = Record::Accepted, .value = token},
                               {.code = Record::Received},
                               {.code = Record::Checked},
                               {.code = Record::Processing},
                               {.code = Record::Complete, .value = Record::FirmwareRestart}};
    all.resize(stages);
    if (error) {
        all.push_back({.code = Record::Error, .value = static_cast<std::uint32_t>(*error)});
    }
    std::string bytes;
    for (Record& record : all) {
        record.magic = update::wireMagic;
        record.crc = update::wireCrc(update::swapped(record));
        bytes += onWire(record);
    }
    return bytes;
}

TEST(DeviceSession, RejectsInvalidRecordsWithTheirStatus) {
    using enum DeviceStatus;
    struct Row {
        std::function<void(Update&)> fault;
        std::size_t stages;
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
        EXPECT_EQ(Client(device).Answers(update.Bytes()), answers(row.stages, row.status))
            << &row - rows;
        EXPECT_EQ(device.End(), std::vector{UpdateResult::rejected}) << &row - rows;
    }
}

TEST(DeviceSession, AcceptsUpdatesAfterFailedOnes) {
    support::TemporaryDirectory const directory;
    ScenarioDevice device(
        [](device::StepContext const& context, device::DeviceConnection& connection) {
            if (context.token == 3 && context.step == device::Step::trailer) {
                throw std::bad_alloc();
            }
            return device::Behaviour().OnStep(context, connection);
        },
        {}, {false, directory.Path()});
    { Client closesAtOnce(device); }
    {
        Client closesEarly(device);
        closesEarly.Send(onWire(Update(2).request).data(), update::recordSize);
    }
    // Numbers of existing files are skipped.
    std::string const stored = "127.0.0.1-" + device.Port() + "-";
    for (char const* const number : {"1", "2", "4"}) {
        directory.Write(stored + number + ".rvl", "old");
    }
    EXPECT_EQ(Client(device).Answers(Update(3).Bytes()), answers(1, {}, 3));
    for (std::uint32_t const token : {4u, 5u}) {
        EXPECT_EQ(Client(device).Answers(Update(token).Bytes()), answers(5, {}, token));
        EXPECT_EQ(support::contentOf(directory.PathOf(stored + std::to_string(token + 1) + ".rvl")),
                  "the file");
    }
    EXPECT_EQ(device.End(5),
              (std::vector{UpdateResult::ended, UpdateResult::ended, UpdateResult::exhausted,
                           UpdateResult::complete, UpdateResult::complete}));
    EXPECT_EQ(device.File(), "the filethe filethe file");
}

TEST(DeviceSession, AcceptsOnlyValidArchivesIfRequired) {
    golden::Archive archive;
    archive.version = 0x00010000;
    archive.files = {{u"a", u"", u"", u"", u"", 0, 0, "data"}};
    std::string const valid = bytesOf(archive);
    archive.targetId = u"p\u00FCmp";
    std::string const forPump = bytesOf(archive);
    auto const changed = [&](std::size_t at) {
        std::string bytes = valid;
        ++bytes[at];
        return bytes;
    };
    struct Row {
        std::string bytes;
        std::optional<DeviceStatus> status;
        std::optional<std::string> target = {};
    };
    using enum DeviceStatus;
    for (Row const& row :  // withValidCrc: a wrong offset but a valid CRC
         {Row{valid, {}}, Row{"", InvalidDataSize}, Row{valid.substr(0, 1000), InvalidDataSize},
          Row{golden::withValidCrc(changed(24)), InvalidDataSize}, Row{"short", InvalidDataSize},
          Row{"a file without a magic", InvalidMagic}, Row{changed(11), InvalidVersion},
          Row{changed(valid.size() - 1), InvalidMagic}, Row{changed(1000), WrongFileCrc},
          Row{forPump, {}}, Row{valid, {}, ""}, Row{forPump, {}, "p\u00FCmp"},
          Row{forPump, InvalidTarget, "p"}, Row{"short", InvalidDataSize, "p"}}) {
        ScenarioDevice device({}, {}, {!row.target, {}, row.target});
        EXPECT_EQ(Client(device).Answers(Update(1, row.bytes).Bytes()),
                  answers(row.status ? 2 : 5, row.status));
        device.End();
    }
}

TEST(DeviceSession, ExecutesItsScenario) {
    std::string const request = onWire(Update(1).request);
    ScenarioDevice garbage("request = garbage 3, notify Checked, close");
    EXPECT_EQ(Client(garbage).Answers(request).substr(3),
              answers(3, {}).substr(2 * update::recordSize));
    EXPECT_EQ(garbage.End(), std::vector{UpdateResult::aborted});
    for (char const* const action : {"together", "drip 0"}) {
        ScenarioDevice rejecting("request = " + std::string(action) + " Error, close");
        Client(rejecting).Answers(request);
        EXPECT_EQ(rejecting.End(), std::vector{UpdateResult::rejected});
    }

    ScenarioDevice silent("connect = silent");
    EXPECT_FALSE(Client(silent).CanRecv(100));
    EXPECT_EQ(silent.End(), std::vector{UpdateResult::aborted});

    ScenarioDevice late("connect = slow 10 0\ndata = after 10, notify Checked, after 20, close");
    std::string const longer = Update(1, std::string(25, 'x')).Bytes();
    EXPECT_EQ(Client(late).Answers(longer).size(), 2U * update::recordSize);
    late.End();
    EXPECT_EQ(late.File().size(), 20U) << "executed in the chunk that contains the byte";
}

TEST(DeviceSession, RejectsOtherUpdatersDuringAnUpdate) {
    device::DeviceTimeouts timeouts;
    timeouts.busy = timeouts.close = 0;
    ScenarioDevice device({}, timeouts);
    std::string const bytes = Update(1).Bytes();
    std::string const request = bytes.substr(0, update::recordSize);
    Client updater(device);
    updater.Send(request.data(), update::recordSize);
    ASSERT_TRUE(updater.CanRecv(20'000));
    Client const sendsNothing(device);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Client(device).Answers(request), answers(0, DeviceStatus::SystemBusy));
    }
    EXPECT_EQ(updater.Answers(bytes.substr(update::recordSize)), answers(5, {}));
    EXPECT_EQ(Client(device).Answers(Update(2).Bytes()), answers(5, {}, 2));
    EXPECT_EQ(device.End(2), (std::vector{UpdateResult::complete, UpdateResult::complete}));
}

TEST(DeviceSession, ReportsATimeoutToTheUpdater) {
    device::DeviceTimeouts timeouts;
    timeouts.idle = 100;
    timeouts.close = 600'000;  // never reached: the device shuts down sending first
    for (std::size_t const sent : {15u, 31u, 39u, 55u}) {
        ScenarioDevice device({}, timeouts);
        EXPECT_EQ(Client(device).Answers(Update(1).Bytes().substr(0, sent)),
                  answers(sent < update::recordSize ? 0 : 1, DeviceStatus::Timeout));
        EXPECT_EQ(device.End(), std::vector{UpdateResult::timedOut});
    }
}

TEST(DeviceSession, AbortsItsSessionsWhenStopped) {
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
