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

/// The end of the updater after its last byte.
enum class Ending { shutDownSending, keepOpen, reset };

struct Record : device::Observer {
    std::string file;
    void OnData(void const* bytes, int length) override {
        file.append(static_cast<char const*>(bytes), static_cast<std::size_t>(length));
    }
};

UpdateResult runSession(core::Socket& socket, Record& record, bool archives) {
    device::DeviceTimeouts timeouts;
    timeouts.idle = 2;
    timeouts.close = 2;
    std::atomic<bool> const stop = false;
    device::Behaviour conforming;
    device::DeviceConnection connection(socket, timeouts, record, stop);
    device::UpdatePolicy const policy{archives, {}};
    device::ReceivedUpdate receivedUpdate(policy, "");
    device::DeviceSession session(connection, conforming, record, receivedUpdate, token);
    UpdateResult const result = session.Run();
    connection.CloseGracefully();
    return result;
}

std::string receiveAll(core::Socket& socket) {
    std::string bytes;
    char chunk[512];
    for (int got = 0; (got = socket.Recv(chunk, static_cast<int>(sizeof chunk))) > 0;) {
        bytes.append(chunk, static_cast<std::size_t>(got));
    }
    return bytes;
}

/// Whether the bytes begin with a complete update whose records and file are valid.
bool isValidUpdate(std::string const& bytes) {
    Words const first = wordsOf(bytes.substr(0, 2 * recordSize));
    if (first.size() < 8 || first[1] > bytes.size()) {
        return false;
    }
    std::string const file = bytes.substr(2 * recordSize, first[1]);
    Words const last = wordsOf(bytes.substr(2 * recordSize + file.size()).substr(0, recordSize));
    std::uint32_t const crc = core::crc32::update(file.data(), static_cast<int>(file.size()), 0);
    return first == Words{magic, first[1], crc, ~magic, magic, token, 0x00010000, first[1]} &&
           last == Words{first[1], crc, token, magic};
}

/// The device sends the first notifications of a complete update, then perhaps an error.
void requireValidAnswers(std::string const& sent, UpdateResult result) {
    Words const values = {token, 0, 0, 0, 1};
    require(sent.size() % recordSize == 0);
    std::size_t count = 0;
    bool error = false;
    for (std::size_t at = 0; at < sent.size(); at += recordSize) {
        Words const record = wordsOf(sent.substr(at, recordSize));
        require(record[0] == magic && record[3] == core::crc32::update(&sent[at], 12, 0));
        require(!error);
        error = record[1] == 0x80000001;
        if (error) {
            require(record[2] >= 1 && record[2] <= 15);
        } else {
            require(record[1] == ++count && count <= values.size());
            require(record[2] == values[count - 1]);
        }
    }
    require((result == UpdateResult::complete) == (count == values.size()));
    require(error == (result == UpdateResult::rejected || result == UpdateResult::timedOut));
}

}  // namespace

/// A byte that selects the end of the updater and the files that the device accepts, then the data
/// that the updater sends.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    unsigned const selection = input.Byte();
    auto const ending = static_cast<Ending>(selection % 3);
    bool const archives = selection / 3 % 2 == 1;
    std::string const sent = input.Rest().substr(0, 16384);

    SocketPair pair;
    pair.near.Send(sent.data(), static_cast<int>(sent.size()));
    if (ending == Ending::shutDownSending) {
        pair.near.ShutdownSend();
    } else if (ending == Ending::reset) {
        pair.near.Abort();
    }
    Record record;
    UpdateResult const result = runSession(*pair.far, record, archives);

    if (ending == Ending::reset) {
        require(result != UpdateResult::stopped && result != UpdateResult::aborted);
        return 0;
    }
    requireValidAnswers(receiveAll(pair.near), result);
    require(record.file.empty() || record.file == sent.substr(2 * recordSize, record.file.size()));
    bool const isValid = isValidUpdate(sent);
    require(archives ? isValid || result != UpdateResult::complete
                     : isValid == (result == UpdateResult::complete));
    return 0;
}
