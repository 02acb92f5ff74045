#include "tests/support/lines.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

namespace support {

std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string outputOf(std::function<void()> const& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

std::string replaced(std::string text, std::string const& find, std::string const& with) {
    for (auto at = text.find(find); at != std::string::npos;
         at = text.find(find, at + with.size())) {
        text.replace(at, find.size(), with);
    }
    return text;
}

}  // namespace support
