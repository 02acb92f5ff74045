#include "device/Reporter.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "core/console/Console.h"
#include "core/runtime/Application.h"
#include "core/text/TextBuilder.h"
#include "core/text/message.h"
#include "core/text/printable.h"
#include "device/println.h"
#include "update/protocol/names.h"

namespace device {

using core::Console;
using core::String;

namespace {

/// How a session ended, unless the update is complete.
std::optional<core::Fault> errorOf(UpdateResult result) {
    switch (result) {
        case UpdateResult::complete:
            return {};
        case UpdateResult::rejected:
            return core::fault("Update refused", "The updater was told why");
        case UpdateResult::ended:
            return core::fault("Connection ended",
                               "The updater closed the connection before the end");
        case UpdateResult::timedOut:
            return core::fault("Updater silent", "Nothing came within the time limit");
        case UpdateResult::stopped:
            return core::fault("Stopped", "The update was broken off because the device stops");
        case UpdateResult::aborted:
            return core::fault("Update broken off", "The device could not or would not go on");
        case UpdateResult::exhausted:
            return core::fault("Out of memory", "The device could not go on with the update");
    }
    return {};
}

core::Fault fileFault(char const* title, String const& path, int error) {
    return core::fault(title, "\"%1\": %2", path, core::cLibraryErrorText(-error));
}

String word(std::uint32_t value) {
    return core::hex(value, 8);
}

/// The bytes as they travel, in groups of four; of many only the first.
String dump(void const* bytes, int length) {
    int const most = 4 * update::recordSize;
    auto const* const octets = static_cast<unsigned char const*>(bytes);
    core::TextBuilder text;
    for (int i = 0; i < std::min(length, most); ++i) {
        char const digits[] = "0123456789ABCDEF";
        text.Append(i % 4 == 0 ? " " : "");
        char const pair[] = {digits[octets[i] / 16], digits[octets[i] % 16]};
        text.Append(std::string_view(pair, sizeof pair));
    }
    return length <= most ? text.AsString()
                          : core::message("%1 ... (%2 bytes)", text.AsString(), length);
}

}  // namespace

Reporter::Reporter(String const& prefix, Detail detail, std::atomic<int>* awaited)
    : prefix_(prefix.View()), detail_(detail), awaited_(awaited) {}

void Reporter::Print(String const& line) const {
    println(String(prefix_.c_str()).AppendNew(line));
}

void Reporter::Trace(char const* arrow, String const& what) const {
    if (detail_ == Detail::bytes) {
        unsigned long long const ms = clock_.Elapsed();
        Print(String::format("%1.%2 s %3%4")
                  .argi(1, ms / 1000, 5)
                  .argi(2, ms % 1000, 3, 10, String::AlignRight, '0')
                  .argi(3, arrow)
                  .argi(4, what));
    }
}

void Reporter::OnConnection(String const& peer) {
    clock_.Reset(0);
    Print(core::message("- Connection from: %1", core::printable(peer.Replace("|", ":"))));
}

void Reporter::OnReceived(void const* bytes, int length) {
    Trace("<", dump(bytes, length));
}

void Reporter::OnSent(void const* bytes, int length) {
    Trace(">", dump(bytes, length));
}

void Reporter::OnRequest(update::UpdateRequest const& request) {
    Print(core::message("- Request: %1 (%2 bytes), CRC-32 %3",
                        core::FormatByteSize(request.fileSize, false), request.fileSize,
                        word(request.fileCrc)));
}

void Reporter::OnHeader(update::UpdateTransferHeader const& header) {
    Print(core::message("- Header: token %1", word(header.acceptToken)));
}

void Reporter::OnFile(std::uint32_t size, std::uint32_t crc) {
    Trace("<", core::message(" %1 bytes of the file", size));
    Print(core::message("- File received: %1 bytes, CRC-32 %2", size, word(crc)));
}

void Reporter::OnArchive(int result, int files) {
    Print(result == 0 ? core::message("- Archive: sound, files in it: %1", files)
                      : core::message("- Archive: not sound (%1)", result));
}

void Reporter::OnNotChecked(int error, String const& path) {
    Print(core::faultLine(fileFault("Update not checked", path, error)));
}

void Reporter::OnStored(int result, String const& path) {
    if (result == 0) {
        Print(core::message("- Stored: %1", core::printable(path)));
    } else {
        Print(core::faultLine(fileFault("Update not stored", path, result)));
    }
}

void Reporter::OnTrailer(update::UpdateTransferTrailer const& trailer) {
    Print(core::message("- Trailer: token %1", word(trailer.acceptToken)));
}

void Reporter::OnNotification(std::uint32_t code, std::uint32_t value) {
    Print(core::message("  Sent: %1, value %2", update::nameOfCode(code), word(value)));
}

void Reporter::OnEnd(UpdateResult result) {
    completed_ = result == UpdateResult::complete;
    // First, because a line may find no memory: the application waits for the lines anyway.
    if (awaited_ != nullptr && std::exchange(awaited_, nullptr)->fetch_sub(1) == 1) {
        core::Application::RequestTermination(core::Application::normalRequest);
    }
    if (completed_) {
        Print(Console::color("- The update is complete.", Console::Color::brightGreen));
    }
    if (auto const error = errorOf(result)) {
        Print(core::faultLine(*error));
    }
}

}  // namespace device
