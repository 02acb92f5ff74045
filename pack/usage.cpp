#include "program/usage.h"

#include "pack/PackApplication.h"

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
        {program + " -x archive -d directory" + optional(" [-f]")},
        {heading("where:")},
        {"-b, --build", "Build an archive from a manifest"},
        {"-o, --output", "File name of the archive"},
        {"-l, --list", "List the content of an archive"},
        {"-j, --json", "Print only one line of JSON"},
        {"-c, --check", "Check a whole archive"},
        {"-x, --extract", "Extract an archive if it is valid"},
        {"-d, --directory", "Directory to extract into"},
        {"-f, --force", "Replace existing files"},
        {"-h, --help", "Show this screen"},
    });
}

}  // namespace pack
