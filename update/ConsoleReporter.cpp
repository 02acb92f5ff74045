#include "update/ConsoleReporter.h"

#include "core/console/lines.h"
#include "update/print.h"
#include "update/session/exchange.h"

namespace update {

void ConsoleReporter::OnNotificationTimeout(core::Interval const& left) {
    core::Fault const timeout = timeoutFault();
    errors_.Add(timeout.title, timeout.message);
    LineReporter::OnNotificationTimeout(left);
}

void ConsoleReporter::Print(core::String const& line) {
    core::printLine(line);
}

void ConsoleReporter::PrintProgress(core::String const& line) {
    printProgress(line);
}

}  // namespace update
