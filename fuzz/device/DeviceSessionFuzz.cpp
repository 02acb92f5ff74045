#include <atomic>
#include <vector>

#include "core/crc/crc32.h"
#include "device/DeviceSession.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/core/net/SocketPair.h"

namespace {

using device::UpdateResult;
using Words = std::vector<std::uint32_t>;

std::size_t const recordSize = update::recordSize;
std::uint32_t const magic = 0xE8B47CC3;
std::uint32_t const token = 1;

Words wordsOf(std::string const& bytes) {
    Words words(bytes.size() / 4);
    for (std::size_t i = 0; i < 4 * words.size(); ++i) {
        words[i / 4] = words[i / 4] << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return words;
}

/// What the updater does behind its last byte.
enum class Ending { endItsSide, stay, reset };

struct Record : device::Observer {
    std::string file;
    void OnData(void const* bytes, int length) override {
        file.append(static_cast<char const*>(bytes), static_cast<std::size_t>(length));
    }
};

UpdateResult converse(core::Socket& socket, Record& record, bool archives) {
    device::DeviceTimeouts timeouts;
    timeouts.idle = 2;
    timeouts.close = 2;
    std::atomic<bool> const stop = false;
    device::Behaviour honest;
    device::DeviceConnection connection(socket, timeouts, record, stop);
    device::UpdatePolicy const policy{archives, {}};
    device::ReceivedUpdate received(policy, "");
    device::DeviceSession session(connection, honest, record, received, token);
    UpdateResult const result = session.Run();
    connection.CloseGracefully();
    return result;
}

std::string receiveAll(core::Socket& socket) {
    std::string bytes;
    char piece[512];
    for (int got = 0; (got = socket.Recv(piece, static_cast<int>(sizeof piece))) > 0;) {
        bytes.append(piece, static_cast<std::size_t>(got));
    }
    return bytes;
}

/// Whether the bytes are a whole update with every record and the file as they must be.
bool isSoundUpdate(std::string const& bytes) {
    Words const front = wordsOf(bytes.substr(0, 2 * recordSize));
    if (front.size() < 8 || front[1] > bytes.size()) {
        return false;
    }
    std::string const file = bytes.substr(2 * recordSize, front[1]);
    Words const back = wordsOf(bytes.substr(2 * recordSize + file.size()).substr(0, recordSize));
    std::uint32_t const crc = core::crc32::update(file.data(), static_cast<int>(file.size()), 0);
    return front == Words{magic, front[1], crc, ~magic, magic, token, 0x00010000, front[1]} &&
           back == Words{front[1], crc, token, magic};
}

/// The device says a part of what it says in a whole update, in order, and perhaps an error.
void requireSense(std::string const& said, UpdateResult result) {
    Words const honest = {token, 0, 0, 0, 1};
    require(said.size() % recordSize == 0);
    std::size_t count = 0;
    bool error = false;
    for (std::size_t at = 0; at < said.size(); at += recordSize) {
        Words const record = wordsOf(said.substr(at, recordSize));
        require(record[0] == magic && record[3] == core::crc32::update(&said[at], 12, 0));
        require(!error);
        error = record[1] == 0x80000001;
        if (error) {
            require(record[2] >= 1 && record[2] <= 15);
        } else {
            require(record[1] == ++count && count <= honest.size());
            require(record[2] == honest[count - 1]);
        }
    }
    require((result == UpdateResult::complete) == (count == honest.size()));
    require(error == (result == UpdateResult::rejected || result == UpdateResult::timedOut));
}

}  // namespace

/// How the updater ends and what the device takes, then all that the updater sends.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    unsigned const how = input.Byte();
    auto const ending = static_cast<Ending>(how % 3);
    bool const archives = how / 3 % 2 == 1;
    std::string const sent = input.Rest().substr(0, 16384);

    SocketPair pair;
    pair.near.Send(sent.data(), static_cast<int>(sent.size()));
    if (ending == Ending::endItsSide) {
        pair.near.ShutdownSend();
    } else if (ending == Ending::reset) {
        pair.near.Abort();
    }
    Record record;
    UpdateResult const result = converse(*pair.far, record, archives);

    if (ending == Ending::reset) {
        require(result != UpdateResult::stopped && result != UpdateResult::aborted);
        return 0;
    }
    requireSense(receiveAll(pair.near), result);
    require(record.file.empty() || record.file == sent.substr(2 * recordSize, record.file.size()));
    bool const sound = isSoundUpdate(sent);
    require(archives ? sound || result != UpdateResult::complete
                     : sound == (result == UpdateResult::complete));
    return 0;
}
