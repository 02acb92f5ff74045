#include "update/print.h"

#include "core/console/lines.h"
#include "program/usage.h"

namespace update {

using core::String;

void printProgress(String const& text) {
    core::printReport(text);
}

void print(String const& text, bool lineEnd) {
    lineEnd ? core::printLine(text) : core::printText(text);
}

void println(String const& text, bool lineEnd) {
    print(text, lineEnd);
}

void print(int indent, String const& text, bool lineEnd) {
    print(indent > 0 ? String::OfChar('\t', indent).AppendNew(text) : text, lineEnd);
}

void println(int indent, String const& text, bool lineEnd) {
    print(indent, text, lineEnd);
}

void showUsage() {
    using program::usage::heading;
    using program::usage::literal;
    using program::usage::optional;
    program::usage::print({
        {heading("Usage:")},
        {"\t" + literal("ravelink") + optional(" [OPTIONS]") + literal(" -o") + " originFile" +
         literal(" -a") + " ipAddress"},
        {heading("where:")},
        {"-o, --origin *", "The update archive file name"},
        {"-a, --address *", "The IPv4 address in the form AAA.BBB.CCC.DDD:Port"},
        {heading("and options:")},
        {"-h, --help", "Show this screen"},
    });
}

}  // namespace update
