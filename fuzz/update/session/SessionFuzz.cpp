#include <array>
#include <atomic>
#include <thread>

#include "core/crc/crc32.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/lines.h"
#include "tests/update/TestedUpdater.h"

namespace {

using update::recordSize;

std::string const file = "the file";
std::string const verdict = "The device is updated and it will restart itself if needed.";

/// How much of the updater a device hears before it speaks: nothing, the request, the header, the
/// file and the trailer.
constexpr std::array<int, 4> awaited = {0, recordSize, recordSize, 8 + recordSize};

/// What the device says at each of these moments, and what it does behind the last one.
struct Script {
    enum Ending { stay, close, reset };

    Ending ending;
    std::size_t moments;
    std::array<std::string, awaited.size()> said;

    explicit Script(Input input) {
        unsigned const how = input.Byte();
        ending = static_cast<Ending>(how % 3);
        moments = 1 + how / 3 % awaited.size();
        std::array<std::size_t, awaited.size()> lengths;
        for (std::size_t& length : lengths) {
            length = input.Byte();
        }
        for (std::size_t i = 0; i < moments; ++i) {
            said[i] = input.Bytes(lengths[i]);
        }
    }
};

/// Receives count bytes; false if the updater ends the connection before.
bool hear(core::Socket& socket, std::size_t count, std::string& heard) {
    std::size_t const wanted = heard.size() + count;
    char piece[1024];
    while (heard.size() < wanted) {
        std::size_t const room = std::min(sizeof piece, wanted - heard.size());
        int const got = socket.Recv(piece, static_cast<int>(room));
        if (got <= 0) {
            return false;
        }
        heard.append(piece, static_cast<std::size_t>(got));
    }
    return true;
}

void act(core::Socket& socket, Script const& script, std::string& heard) {
    for (std::size_t i = 0; i < script.moments; ++i) {
        if (!hear(socket, static_cast<std::size_t>(awaited[i]), heard)) {
            return;
        }
        socket.Send(script.said[i].data(), static_cast<int>(script.said[i].size()));
    }
    if (script.ending == Script::reset) {
        socket.Abort();
    } else if (script.ending == Script::stay) {
        hear(socket, heard.max_size() - heard.size(), heard);
    }
}

/// Takes one connection on a port that serves all sessions of this process.
class Device {
public:
    explicit Device(Script const& script)
        : thread_([this, &script] {
              while (!Listener().CanRecv(20)) {
                  if (over_) {
                      return;
                  }
              }
              core::ClassRef<core::Socket> socket;
              require(Listener().Accept(socket) == core::socket_result::success);
              act(*socket, script, heard_);
          }) {}

    static std::string Address() {
        core::String name;
        Listener().GetSockName(name, true);
        return name.Replace("|", ":").getCString();
    }

    /// All that it heard, once the updater is done.
    std::string const& End() {
        over_ = true;
        thread_.join();
        return heard_;
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

    std::atomic<bool> over_ = false;
    std::string heard_;
    std::thread thread_;
};

std::uint32_t wordAt(std::string const& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (char const byte : bytes.substr(at, 4)) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

/// Whether a sound record that tells of the end stands anywhere in it.
bool tellsOfTheEnd(Script const& script) {
    std::string bytes;
    for (std::string const& said : script.said) {
        bytes += said;
    }
    for (std::size_t at = 0; at + recordSize <= bytes.size(); ++at) {
        if (wordAt(bytes, at) == 0xE8B47CC3 && wordAt(bytes, at + 4) == 5 &&
            wordAt(bytes, at + 12) == core::crc32::update(&bytes[at], 12, 0)) {
            return true;
        }
    }
    return false;
}

void requireSense(std::vector<std::string> const& lines, Script const& script,
                  std::string const& heard) {
    std::size_t const all = 3 * recordSize + file.size();
    require(heard.size() <= all && !lines.empty());
    if (lines.back() == verdict) {
        require(tellsOfTheEnd(script));
        require(script.ending != Script::stay ||
                (heard.size() == all && heard.substr(2 * recordSize, file.size()) == file));
    } else {
        require(lines.size() > 1 && lines.back().empty());
        require(lines[lines.size() - 2].starts_with("*** "));
    }
}

}  // namespace

/// Whatever a device says, and when, the updater comes to an end, and to the right one.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static support::TemporaryDirectory const folder;
    static std::string const path = folder.Write("update", file);
    TestedUpdater& updater = TestedUpdater::Instance();
    updater.timeouts.requestAnswer = 3;
    updater.timeouts.headerAnswer = 2;
    updater.timeouts.transferStall = 50;
    updater.timeouts.completion = 8;
    updater.timeouts.notification = 3;

    Script const script(Input(data, size));
    Device device(script);
    std::vector<std::string> const lines = updater.RunSession(path, Device::Address());
    requireSense(lines, script, device.End());
    return 0;
}
