#pragma once

#include <map>
#include <regex>
#include <sstream>

#include "tests/pack/packing.h"

namespace support {

inline std::string sourceText(std::string const& path) {
    return contentOf(RAVELINK_SOURCE "/" + path);
}

/// The lines of all blocks between "```kind" and "```".
inline std::string blocksOf(std::string const& text, std::string const& kind) {
    std::string const mark = "```" + kind + "\n";
    std::string lines;
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
        at += mark.size();
        lines += text.substr(at, text.find("```", at) - at);
    }
    return lines;
}

/// The bytes of a dump: an offset, then up to 16 bytes, the characters behind "|"; "*" repeats the
/// line before it up to the next offset.
inline std::string bytesOf(std::string const& dump) {
    std::string bytes;
    for (std::string line : linesOf(dump)) {
        if (line == "*") {
            continue;
        }
        std::istringstream words(line.substr(0, line.find('|')));
        std::size_t offset = 0;
        words >> std::hex >> offset;
        while (bytes.size() < offset) {
            bytes += bytes.substr(bytes.size() - 16);
        }
        EXPECT_EQ(bytes.size(), offset) << line;
        for (unsigned byte = 0; words >> byte;) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

using Numbers = std::map<std::string, long long>;

/// The names and numbers that lines begin with, whichever stands first, from begin to end.
inline Numbers numbersOf(std::string const& text, std::string const& begin,
                         std::string const& end) {
    std::regex const row(R"(\W*(?:(\d\w*)\W+([A-Za-z]\w*)|([A-Za-z]\w*)\W+(\d\w*)).*)");
    std::size_t const start = text.find(begin);
    Numbers numbers;
    for (std::string const& line : linesOf(text.substr(start, text.find(end, start) - start))) {
        std::smatch match;
        if (std::regex_match(line, match, row)) {
            numbers[match.str(2) + match.str(3)] = std::stoll(match.str(1) + match.str(4), {}, 0);
        }
    }
    return numbers;
}

}  // namespace support
