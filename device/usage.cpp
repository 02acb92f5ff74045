#include "device/usage.h"

#include "core/console/UsageText.h"
#include "device/println.h"

namespace device {

using core::String;

char const optionGrammar[] =
    "h|help=0>b|bind=1>n|count=1>1|once=0>c|check=0>d|directory=1>s|scenario=1>v|verbose=0";

void showUsage() {
    using namespace core::usage;
    String const lines[] = {
        heading("Usage:"),
        String("\t").AppendNew(literal("ravelink-device")).AppendNew(optional(" [OPTIONS]")),
        heading("where options are:"),
        option("-b, --bind       ",
               ": Where to listen, AAA.BBB.CCC.DDD:Port; port 0 takes a free one (127.0.0.1:3007)"),
        option("-n, --count      ", ": So many devices, on ports from there on (1)"),
        option("-s, --scenario   ", ": Behave as this file says"),
        option("-c, --check      ", ": Take nothing but sound update archives"),
        option("-d, --directory  ", ": Store there what arrives whole, as Address-Port-Number.rvl"),
        option("-1, --once       ",
               ": End after one update on each; exit status 1 when one was not completed"),
        option("-v, --verbose    ", ": Show what travels, byte by byte and when"),
        option("-h, --help       ", ": Show this screen"),
        String(),
    };
    for (String const& line : lines) {
        println(line);
    }
}

}  // namespace device
