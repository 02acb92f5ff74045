#include "tests/support/run.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/lines.h"

namespace support {

Ran run(std::string const& command) {
    TemporaryFolder const folder;
    std::string const output = folder.PathOf("output");
    int const status = std::system(("( " + command + "\n) > " + output).c_str());
    std::ostringstream text;
    text << std::ifstream(output, std::ios::binary).rdbuf();
    // Some systems keep the exit status in the second byte.
    return {linesOf(replaced(text.str(), "\r\n", "\n")),
            (status & 0xFF) == 0 ? status >> 8 : status};
}

}  // namespace support
