#include "update/usage.h"

#include "core/console/UsageText.h"
#include "update/print.h"

namespace update {

using core::String;

char const optionGrammar[] = "h|help=0>o|origin=1>a|address=1>t|type=1>i|id=1";

void showUsage() {
    using namespace core::usage;
    println(heading("Usage:"), true);
    println(String("\t")
                .AppendNew(literal("ravelink"))
                .AppendNew(optional(" [OPTIONS]"))
                .AppendNew(literal(" -o"))
                .AppendNew(" originFile")
                .AppendNew(literal(" -a"))
                .AppendNew(" ipAddress"),
            true);
    println(heading("where:"), true);
    println(option("-o, --origin *   ", ": The update archive file name"), true);
    println(option("-a, --address *  ", ": The IPv4 address in the form AAA.BBB.CCC.DDD:Port"),
            true);
    println(heading("and options:"), true);
    println(option("-h, --help       ", ": Show this screen"), true);
    println("", true);
}

}  // namespace update
