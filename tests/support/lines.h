#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace support {

/// Splits at line feeds; what follows the last one counts as a line when it is not empty.
inline std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The bytes of a file; none when it cannot be read.
inline std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What action writes to standard output.
inline std::string outputOf(std::function<void()> const& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

/// Every occurrence of find in text replaced.
inline std::string replaced(std::string text, std::string const& find, std::string const& with) {
    for (auto at = text.find(find); at != std::string::npos;
         at = text.find(find, at + with.size())) {
        text.replace(at, find.size(), with);
    }
    return text;
}

}  // namespace support
