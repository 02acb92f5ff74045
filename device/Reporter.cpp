#include "device/Reporter.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "core/runtime/Application.h"
#include "core/text/TextBuilder.h"
#include "core/text/message.h"
#include "core/text/printable.h"
#include "update/protocol/names.h"

namespace device {

using core::Console;
using core::Fault;
using core::fault;
using core::message;
using core::String;

namespace {

/// Returns the error of a session, or nothing if its update is complete.
std::optional<Fault> errorOf(UpdateResult result) {
    switch (result) {
        case UpdateResult::complete:
            return {};
        case UpdateResult::rejected:
            return fault("Update rejected", "The device reported an error");
        case UpdateResult::ended:
            return fault("Connection ended", "The updater closed the connection before the end");
        case UpdateResult::timedOut:
            return fault("Updater timed out", "No data within the time limit");
        case UpdateResult::stopped:
            return fault("Stopped", "Update aborted: the device is stopping");
        case UpdateResult::aborted:
            return fault("Update aborted", "The device ended it");
        case UpdateResult::exhausted:
            return fault("Out of memory", "The device could not continue the update");
    }
    return {};
}

Fault fileFault(char const* title, String const& path, int error) {
    return fault(title, "\"%1\": %2", path, core::cLibraryErrorText(-error));
}

String word(std::uint32_t value) {
    return core::hex(value, 8);
}

/// Returns the bytes in hexadecimal, in groups of four; of many only the first.
String dump(void const* bytes, int length) {
    int const most = 4 * update::recordSize;
    auto const* const octets = static_cast<unsigned char const*>(bytes);
    core::TextBuilder text;
    for (int i = 0; i < std::min(length, most); ++i) {
        text.Append(i % 4 == 0 ? " " : "");
        text.Append(core::hex(octets[i], 2).View().substr(2));
    }
    return length <= most ? text.AsString() : message("%1 ... (%2 bytes)", text.AsString(), length);
}

}  // namespace

Reporter::Reporter(String const& prefix, Detail detail, std::atomic<int>* awaited)
    : prefix_(prefix.View()), detail_(detail), awaited_(awaited) {}

std::unique_ptr<Observer> Reporter::CreateBusyObserver(std::uint32_t number) {
    return std::make_unique<Reporter>(message("%1busy %2: ", prefix_.c_str(), number), detail_,
                                      nullptr);
}

void Reporter::Print(String const& line) const {
    core::printLine(String(prefix_.c_str()).AppendNew(line));
}

void Reporter::Trace(char const* arrow, String const& data) const {
    if (detail_ == Detail::bytes) {
        unsigned long long const ms = clock_.Elapsed();
        String const seconds = message("%1", ms / 1000).GetAligned(5, String::AlignRight);
        String const rest = message("%1", ms % 1000).GetAligned(3, String::AlignRight, '0');
        Print(message("%1.%2 s %3%4", seconds, rest, arrow, data));
    }
}

void Reporter::OnConnection(String const& peer) {
    clock_.Reset(0);
    Print(message("- Connection from: %1", core::printable(peer.Replace("|", ":"))));
}

void Reporter::OnReceived(void const* bytes, int length) {
    Trace("<", dump(bytes, length));
}

void Reporter::OnSent(void const* bytes, int length) {
    Trace(">", dump(bytes, length));
}

void Reporter::OnRequest(update::UpdateRequest const& request) {
    Print(message("- Request: %1 (%2 bytes), CRC-32 %3",
                  core::FormatByteSize(request.fileSize, false), request.fileSize,
                  word(request.fileCrc)));
}

void Reporter::OnHeader(update::UpdateTransferHeader const& header) {
    Print(message("- Header: token %1", word(header.acceptToken)));
}

void Reporter::OnFile(std::uint32_t size, std::uint32_t crc) {
    Trace("<", message(" %1 bytes of the file", size));
    Print(message("- File received: %1 bytes, CRC-32 %2", size, word(crc)));
}

void Reporter::OnArchive(ArchiveCheck const& check) {
    Print(check.result != 0 ? message("- Archive: invalid (%1)", check.result)
          : check.misplacedFile >= 0
              ? message("- Archive: invalid (wrong offset of file[%1])", check.misplacedFile)
          : check.otherTarget ? message("- Archive: valid, but for target \"%1\"",
                                        core::printable(*check.otherTarget))
                              : message("- Archive: valid, files: %1", check.files));
}

void Reporter::OnNotChecked(int error, String const& path) {
    Print(core::faultLine(fileFault("Update not checked", path, error)));
}

void Reporter::OnStored(int result, String const& path) {
    if (result == 0) {
        Print(message("- Stored: %1", core::printable(path)));
    } else {
        Print(core::faultLine(fileFault("Update not stored", path, result)));
    }
}

void Reporter::OnTrailer(update::UpdateTransferTrailer const& trailer) {
    Print(message("- Trailer: token %1", word(trailer.acceptToken)));
}

void Reporter::OnNotification(std::uint32_t code, std::uint32_t value) {
    Print(message("  Sent: %1, value %2", update::nameOfCode(code), word(value)));
}

void Reporter::OnEnd(UpdateResult result) {
    // First, because printing may run out of memory; the application waits for the lines anyway.
    if (auto* const awaited = std::exchange(awaited_, nullptr); awaited != nullptr) {
        completed_ = result == UpdateResult::complete;
        if (awaited->fetch_sub(1) == 1) {
            core::Application::RequestTermination(core::Application::normalRequest);
        }
    }
    if (result == UpdateResult::complete) {
        Print(Console::color("- The update is complete.", Console::Color::brightGreen));
    }
    if (auto const error = errorOf(result)) {
        Print(core::faultLine(*error));
    }
}

}  // namespace device
