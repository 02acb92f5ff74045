#include "device/Reporter.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/console/Console.h"
#include "core/console/errorLine.h"
#include "core/runtime/Application.h"
#include "core/text/TextBuilder.h"
#include "core/text/errnoDescription.h"
#include "device/names.h"
#include "device/println.h"

namespace device {

using core::Console;
using core::String;

namespace {

struct OutcomeText {
    Outcome outcome;
    char const* error;  ///< title "=" message
};

constexpr OutcomeText outcomeTexts[] = {
    {Outcome::refused, "Update refused=The updater was told why"},
    {Outcome::ended, "Connection ended=The updater closed the connection before the end"},
    {Outcome::silent, "Updater silent=Nothing came within the time limit"},
    {Outcome::stopped, "Stopped=The update was broken off because the device stops"},
    {Outcome::misbehaved, "Update broken off=The device could not or would not go on"},
};

String hex(std::uint32_t word) {
    return String::format("0x%1").argi(1, word, 8, 16);
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
    return length <= most
               ? text.AsString()
               : String::format("%2 ... (%1 bytes)").argi(1, length).argi(2, text.AsString());
}

}  // namespace

Reporter::Reporter(String const& prefix, Detail detail, std::atomic<int>* awaited)
    : prefix_(prefix), detail_(detail), awaited_(awaited) {}

void Reporter::Print(String const& line) const {
    println(prefix_.AppendNew(line));
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
    Print(String::format("- Connection from: %1").argi(1, peer.Replace("|", ":")));
}

void Reporter::OnReceived(void const* bytes, int length) {
    Trace("<", dump(bytes, length));
}

void Reporter::OnSent(void const* bytes, int length) {
    Trace(">", dump(bytes, length));
}

void Reporter::OnRequest(update::UpdateRequest const& request) {
    Print(String::format("- Request: %1 (%2 bytes), CRC-32 %3")
              .argi(1, core::FormatByteSize(request.fileSize, false))
              .argi(2, request.fileSize)
              .argi(3, hex(request.fileCrc)));
}

void Reporter::OnHeader(update::UpdateTransferHeader const& header) {
    Print(String::format("- Header: token %1").argi(1, hex(header.acceptToken)));
}

void Reporter::OnFile(std::uint32_t size, std::uint32_t crc) {
    Trace("<", String::format(" %1 bytes of the file").argi(1, size));
    Print(String::format("- File received: %1 bytes, CRC-32 %2").argi(1, size).argi(2, hex(crc)));
}

void Reporter::OnArchive(int result, int files) {
    Print(result == 0 ? String::format("- Archive: sound, files in it: %1").argi(1, files)
                      : String::format("- Archive: not sound (%1)").argi(1, result));
}

void Reporter::OnStored(int result, String const& path) {
    if (result == 0) {
        Print(String::format("- Stored: %1").argi(1, path));
    } else {
        Print(core::errorLine(String::format("Update not stored=\"%2\": %1")
                                  .argi(1, core::cLibraryErrorText(-result))
                                  .argi(2, path)));
    }
}

void Reporter::OnTrailer(update::UpdateTransferTrailer const& trailer) {
    Print(String::format("- Trailer: token %1").argi(1, hex(trailer.acceptToken)));
}

void Reporter::OnNotification(std::uint32_t code, std::uint32_t value) {
    Print(String::format("  Sent: %1, value %2").argi(1, nameOfCode(code)).argi(2, hex(value)));
}

void Reporter::OnEnd(Outcome outcome) {
    completed_ = outcome == Outcome::complete;
    if (completed_) {
        Print(Console::color("- The update is complete.", Console::Color::brightGreen));
    }
    for (OutcomeText const& row : outcomeTexts) {
        if (row.outcome == outcome) {
            Print(core::errorLine(row.error));
        }
    }
    if (awaited_ != nullptr && std::exchange(awaited_, nullptr)->fetch_sub(1) == 1) {
        core::Application::RequestTermination(core::Application::normalRequest);
    }
}

}  // namespace device
