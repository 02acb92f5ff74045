#pragma once

#include <string>
#include <vector>

namespace support {

struct Ran {
    std::vector<std::string> lines;
    int status;
};

/// Runs a shell command line; the lines of its standard output and its exit status.
Ran run(std::string const& command);

}  // namespace support
