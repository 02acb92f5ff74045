#include "update/ConsoleReporter.h"

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "core/text/message.h"
#include "update/print.h"
#include "update/session/exchange.h"

namespace update {

using core::Console;
using core::message;
using core::printLine;
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
void printLineOf(NumberLine const (&lines)[count], std::uint32_t number) {
    for (NumberLine const& row : lines) {
        if (row.number == number) {
            printLine(row.line);
        }
    }
}

String coloredSize(int bytes, Console::Color color) {
    return Console::color(core::FormatByteSize(bytes, false), color);
}

}  // namespace

void ConsoleReporter::OnConnecting(core::IPv4Address const& device) {
    printLine(message("- Connecting to: %1:%2 ...", device.GetAsString(false), device.Port()));
}

void ConsoleReporter::OnConnected() {
    printLine("  Connected!");
}

void ConsoleReporter::OnNotification(UpdateNotification const& notification) {
    printLineOf(codeLines, notification.code);
    if (notification.code == UpdateNotification::Complete) {
        printLineOf(restartLines, notification.value);
    }
}

void ConsoleReporter::OnSent(int bytes, int) {
    printProgress(
        message(">   Transferred by now: %1", coloredSize(bytes, Console::Color::brightYellow)));
}

void ConsoleReporter::OnFileSent(int fileSize) {
    printProgress(
        message("- File completely sent: %1", coloredSize(fileSize, Console::Color::brightGreen)));
}

void ConsoleReporter::OnWaiting() {
    printLine("  The update process may take a while. Please wait...");
}

void ConsoleReporter::OnNotificationTimeout(core::Interval const& left) {
    core::Fault const timeout = timeoutFault();
    errors_.Add(timeout.title, timeout.message);
    printLine(message("  System is still updating. %1 until timeout",
                      left.ToString(core::Interval::CEStringFormat::daysOrAutomatic)));
}

void ConsoleReporter::OnComplete() {
    printLine("The device is updated and it will restart itself if needed.");
}

}  // namespace update
