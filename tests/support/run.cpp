#include "tests/support/run.h"

#include <gtest/gtest.h>

#include "tests/support/lines.h"
#include "tests/support/system.h"

namespace support {

Ran run(std::string const& command) {
    std::FILE* const pipe = openPipe(command);
    EXPECT_NE(pipe, nullptr);
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        output.push_back(static_cast<char>(c));
    }
    return {linesOf(output), closePipe(pipe)};
}

}  // namespace support
