#include "pack/usage.h"

#include "core/console/UsageText.h"
#include "core/console/lines.h"

namespace pack {

using core::String;

namespace {

String form(char const* arguments) {
    return String("\t")
        .AppendNew(core::usage::literal("ravelink-pack"))
        .AppendNew(" ")
        .AppendNew(arguments);
}

}  // namespace

char const optionGrammar[] =
    "h|help=0>b|build=1>o|output=1>l|list=1>j|json=0>c|check=1>x|extract=1>d|directory=1>f|force=0";

void showUsage() {
    using namespace core::usage;
    String const lines[] = {
        heading("Usage:"),
        form("-b manifest -o archive"),
        form("-l archive").AppendNew(optional(" [-j]")),
        form("-c archive"),
        form("-x archive -d folder").AppendNew(optional(" [-f]")),
        heading("where:"),
        option("-b, --build      ", ": Make an archive as the manifest says"),
        option("-o, --output     ", ": The archive's file name"),
        option("-l, --list       ", ": List what an archive holds"),
        option("-j, --json       ", ": As one line of JSON and nothing else"),
        option("-c, --check      ", ": Check an archive from its first byte to its last"),
        option("-x, --extract    ", ": Unpack a sound archive, a bad one not at all"),
        option("-d, --directory  ", ": The folder to unpack below"),
        option("-f, --force      ", ": Replace files that are there already"),
        option("-h, --help       ", ": Show this screen"),
        String(),
    };
    for (String const& line : lines) {
        core::printLine(line);
    }
}

}  // namespace pack
