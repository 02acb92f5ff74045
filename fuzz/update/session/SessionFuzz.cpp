#include <array>
#include <atomic>
#include <thread>

#include "core/crc/crc32.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/support/TemporaryDirectory.h"
#include "update/session/Session.h"

namespace {

using update::recordSize;

std::string const file = "the file";

/// The number of bytes that a device receives before each of its replies: nothing, the request, the
/// header, the file and the trailer.
constexpr std::array<int, 4> awaited = {0, recordSize, recordSize, 8 + recordSize};

/// The replies of the device, and its action after the last one.
struct Script {
    enum Ending { stay, close, reset };

    Ending ending;
    std::size_t count;
    std::array<std::string, awaited.size()> replies;

    explicit Script(Input input) {
        unsigned const how = input.Byte();
        ending = static_cast<Ending>(how % 3);
        count = 1 + how / 3 % awaited.size();
        std::array<std::size_t, awaited.size()> lengths;
        for (std::size_t& length : lengths) {
            length = input.Byte();
        }
        for (std::size_t i = 0; i < count; ++i) {
            replies[i] = input.Bytes(lengths[i]);
        }
    }
};

/// Appends count bytes. Returns false if the updater closes the connection earlier.
bool receive(core::Socket& socket, std::size_t count, std::string& received) {
    std::size_t const wanted = received.size() + count;
    char chunk[1024];
    while (received.size() < wanted) {
        std::size_t const size = std::min(sizeof chunk, wanted - received.size());
        int const got = socket.Recv(chunk, static_cast<int>(size));
        if (got <= 0) {
            return false;
        }
        received.append(chunk, static_cast<std::size_t>(got));
    }
    return true;
}

void follow(Script const& script, core::Socket& socket, std::string& received) {
    for (std::size_t i = 0; i < script.count; ++i) {
        if (!receive(socket, static_cast<std::size_t>(awaited[i]), received)) {
            return;
        }
        socket.Send(script.replies[i].data(), static_cast<int>(script.replies[i].size()));
    }
    if (script.ending == Script::reset) {
        socket.Abort();
    } else if (script.ending == Script::stay) {
        receive(socket, received.max_size() - received.size(), received);
    }
}

/// Accepts one connection, on the same port for all sessions of the process.
class Device {
public:
    explicit Device(Script const& script)
        : thread_([this, &script] {
              while (!Listener().CanRecv(20)) {
                  if (isOver_) {
                      return;
                  }
              }
              core::ClassRef<core::Socket> socket;
              require(Listener().Accept(socket) == core::socket_result::success);
              follow(script, *socket, received_);
          }) {}

    static std::string Address() {
        core::String name;
        Listener().GetSockName(name, true);
        return name.Replace("|", ":").getCString();
    }

    /// Waits until the updater has closed. Returns the bytes received.
    std::string const& End() {
        isOver_ = true;
        thread_.join();
        return received_;
    }

private:
    static core::Socket& Listener() {
        static bool const started = core::Socket::init();
        static core::Socket listener(core::SocketDomain::IPv4, core::SocketType::stream);
        static bool const listening =
            listener.Bind("127.0.0.1|0") == core::socket_result::success &&
            listener.Listen() == core::socket_result::success;
        require(started && listening);
        return listener;
    }

    std::atomic<bool> isOver_ = false;
    std::string received_;
    std::thread thread_;
};

std::uint32_t wordAt(std::string const& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (char const byte : bytes.substr(at, 4)) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

/// Whether the replies contain a valid record with the code Complete, at any offset.
bool containsComplete(Script const& script) {
    std::string bytes;
    for (std::string const& reply : script.replies) {
        bytes += reply;
    }
    for (std::size_t at = 0; at + recordSize <= bytes.size(); ++at) {
        if (wordAt(bytes, at) == 0xE8B47CC3 && wordAt(bytes, at + 4) == 5 &&
            wordAt(bytes, at + 12) == core::crc32::update(&bytes[at], 12, 0)) {
            return true;
        }
    }
    return false;
}

void requireConsistency(update::Outcome const& outcome, Script const& script,
                        std::string const& received) {
    std::size_t const all = 3 * recordSize + file.size();
    require(received.size() <= all);
    if (outcome.IsComplete()) {
        require(containsComplete(script));
        require(script.ending != Script::stay ||
                (received.size() == all && received.substr(2 * recordSize, file.size()) == file));
    } else {
        require(!outcome.failure->fault.title.IsEmpty());
        require(received.size() <= 2 * recordSize ||
                outcome.failure->GetDelivered() >= update::Delivered::partOfFile);
    }
}

}  // namespace

/// Checks that a session ends, and with the right outcome, whatever a device sends and when.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static support::TemporaryDirectory const directory;
    static std::string const path = directory.Write("update", file);
    update::SessionTimeouts timeouts;
    timeouts.requestAnswer = 3;
    timeouts.headerAnswer = 2;
    timeouts.transferStall = 50;
    timeouts.completion = 8;
    timeouts.notification = 3;

    Script const script(Input(data, size));
    Device device(script);
    update::Task task{path.c_str(), {}};
    require(!update::readDevice(Device::Address().c_str(), task.device));
    update::SessionObserver observer;
    update::Outcome const outcome = update::Session(task, observer, timeouts).Run();
    requireConsistency(outcome, script, device.End());
    return 0;
}
