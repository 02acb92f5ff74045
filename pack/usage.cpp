#include "pack/usage.h"

#include "program/usage.h"

namespace pack {

char const optionGrammar[] =
    "h|help=0>b|build=1>o|output=1>l|list=1>j|json=0>c|check=1>x|extract=1>d|directory=1>f|force=0";

void showUsage() {
    using namespace program::usage;
    core::String const program = "\t" + literal("ravelink-pack");
    print({
        {heading("Usage:")},
        {program + " -b manifest -o archive"},
        {program + " -l archive" + optional(" [-j]")},
        {program + " -c archive"},
        {program + " -x archive -d folder" + optional(" [-f]")},
        {heading("where:")},
        {"-b, --build", "Make an archive as the manifest says"},
        {"-o, --output", "The archive's file name"},
        {"-l, --list", "List what an archive holds"},
        {"-j, --json", "As one line of JSON and nothing else"},
        {"-c, --check", "Check an archive from its first byte to its last"},
        {"-x, --extract", "Unpack a sound archive, a bad one not at all"},
        {"-d, --directory", "The folder to unpack below"},
        {"-f, --force", "Replace files that are there already"},
        {"-h, --help", "Show this screen"},
    });
}

}  // namespace pack
