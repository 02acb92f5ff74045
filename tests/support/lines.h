#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace support {

/// Splits at line feeds. Text after the last one is a line if it is not empty.
inline std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Returns the content of a file, or an empty string if it cannot be read.
inline std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns the standard output of action.
inline std::string outputOf(std::function<void()> const& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

/// Returns text with every occurrence of find replaced.
inline std::string replaced(std::string text, std::string const& find, std::string const& with) {
    for (auto at = text.find(find); at != std::string::npos;
         at = text.find(find, at + with.size())) {
        text.replace(at, find.size(), with);
    }
    return text;
}

}  // namespace support
