#include "device/Reporter.h"

#include "core/console/Console.h"
#include "core/console/errorLine.h"
#include "core/runtime/Application.h"
#include "update/protocol/UpdateNotification.h"

namespace device {

using core::Console;
using core::String;
using update::UpdateNotification;

namespace {

struct CodeName {
    std::uint32_t code;
    char const* name;
};

constexpr CodeName codeNames[] = {
    {UpdateNotification::Accepted, "Accepted"},     {UpdateNotification::Received, "Received"},
    {UpdateNotification::Checked, "Checked"},       {UpdateNotification::Processing, "Processing"},
    {UpdateNotification::Complete, "Complete"},     {UpdateNotification::Error, "Error"},
    {UpdateNotification::ErrorAlt, "Error (alt.)"},
};

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

String nameOf(std::uint32_t code) {
    for (CodeName const& row : codeNames) {
        if (row.code == code) {
            return row.name;
        }
    }
    return "Unknown";
}

String hex(std::uint32_t word) {
    return String::format("0x%1").argi(1, word, 8, 16);
}

void line(String const& text) {
    Console::write(text, true);
}

}  // namespace

Reporter::Reporter(bool once) : once_(once) {}

void Reporter::OnConnection(String const& peer) {
    line(String::format("- Connection from: %1").argi(1, peer.Replace("|", ":")));
}

void Reporter::OnRequest(update::UpdateRequest const& request) {
    line(String::format("- Request: %1 (%2 bytes), CRC-32 %3")
             .argi(1, core::FormatByteSize(request.fileSize, false))
             .argi(2, request.fileSize)
             .argi(3, hex(request.fileCrc)));
}

void Reporter::OnHeader(update::UpdateTransferHeader const& header) {
    line(String::format("- Header: token %1").argi(1, hex(header.acceptToken)));
}

void Reporter::OnFile(std::uint32_t size, std::uint32_t crc) {
    line(String::format("- File received: %1 bytes, CRC-32 %2").argi(1, size).argi(2, hex(crc)));
}

void Reporter::OnArchive(int result, int files) {
    line(result == 0 ? String::format("- Archive: sound, files in it: %1").argi(1, files)
                     : String::format("- Archive: not sound (%1)").argi(1, result));
}

void Reporter::OnTrailer(update::UpdateTransferTrailer const& trailer) {
    line(String::format("- Trailer: token %1").argi(1, hex(trailer.acceptToken)));
}

void Reporter::OnNotification(std::uint32_t code, std::uint32_t value) {
    line(String::format("  Sent: %1, value %2").argi(1, nameOf(code)).argi(2, hex(value)));
}

void Reporter::OnEnd(Outcome outcome) {
    completed_ = outcome == Outcome::complete;
    if (completed_) {
        line(Console::color("- The update is complete.", Console::Color::brightGreen));
    }
    for (OutcomeText const& row : outcomeTexts) {
        if (row.outcome == outcome) {
            line(core::errorLine(row.error));
        }
    }
    if (once_) {
        core::Application::RequestTermination(core::Application::normalRequest);
    }
}

}  // namespace device
