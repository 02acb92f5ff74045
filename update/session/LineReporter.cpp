#include "update/session/LineReporter.h"

#include "core/console/Console.h"
#include "core/text/message.h"

namespace update {

using core::Console;
using core::message;
using core::String;

namespace {

struct NumberLine {
    std::uint32_t number;
    char const* line;
};

constexpr NumberLine codeLines[] = {
    {UpdateNotification::Accepted, "- The device has accepted our request."},
    {UpdateNotification::Received, "- The device has received the update file."},
    {UpdateNotification::Checked, "- The device has checked the update file."},
    {UpdateNotification::Processing, "- The device is processing the update file."},
    {UpdateNotification::Complete, "- The update process is complete."},
};

constexpr NumberLine restartLines[] = {
    {UpdateNotification::FirmwareRestart, "  The firmware is restarting."},
    {UpdateNotification::HardwareRestart, "  The hardware is restarting."},
    {UpdateNotification::PowerCycle, "  Please power off the device and then power on again."},
};

template <std::size_t count>
char const* lineOf(NumberLine const (&lines)[count], std::uint32_t number) {
    for (NumberLine const& row : lines) {
        if (row.number == number) {
            return row.line;
        }
    }
    return nullptr;
}

String coloredSize(int bytes, Console::Color color) {
    return Console::color(core::FormatByteSize(bytes, false), color);
}

}  // namespace

void LineReporter::OnConnecting(core::IPv4Address const& device) {
    Print(message("- Connecting to: %1:%2 ...", device.GetAsString(false), device.Port()));
}

void LineReporter::OnConnected(core::IPv4Address const& /*local*/) {
    Print("  Connected!");
}

void LineReporter::OnNotification(UpdateNotification const& notification) {
    if (char const* const line = lineOf(codeLines, notification.code)) {
        Print(line);
    }
    char const* const line = notification.code == UpdateNotification::Complete
                                 ? lineOf(restartLines, notification.value)
                                 : nullptr;
    if (line != nullptr) {
        Print(line);
    }
}

void LineReporter::OnSent(int bytes, int) {
    PrintProgress(
        message(">   Transferred by now: %1", coloredSize(bytes, Console::Color::brightYellow)));
}

void LineReporter::OnFileSent(int fileSize) {
    PrintProgress(
        message("- File completely sent: %1", coloredSize(fileSize, Console::Color::brightGreen)));
}

void LineReporter::OnWaiting() {
    Print("  The update process may take a while. Please wait...");
}

void LineReporter::OnNotificationTimeout(core::Interval const& left) {
    Print(message("  System is still updating. %1 until timeout",
                  left.ToString(core::Interval::CEStringFormat::daysOrAutomatic)));
}

void LineReporter::OnComplete() {
    Print("The device is updated and it will restart itself if needed.");
}

}  // namespace update
