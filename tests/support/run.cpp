#include "tests/support/run.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/lines.h"

namespace support {

Ran run(std::string const& command) {
    std::string output;
    std::FILE* const pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        output.push_back(static_cast<char>(c));
    }
    int const status = pclose(pipe);
    // Some systems keep the exit status in the second byte.
    return {linesOf(output), (status & 0xFF) == 0 ? status >> 8 : status};
}

}  // namespace support
