#include "pack/printable.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "core/archive/unicode.h"

namespace pack {

using core::String;

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// Control characters, and those that turn the direction of what follows or end a line.
constexpr Range controls[] = {
    {0x00, 0x1F}, {0x7F, 0x9F}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool isControl(char32_t point) {
    return std::any_of(std::begin(controls), std::end(controls), [point](Range const& range) {
        return point >= range.first && point <= range.last;
    });
}

}  // namespace

String printable(String const& text) {
    std::string shown;
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        bool const sound = core::unicode::takePoint(rest, point);
        core::unicode::appendPoint(sound && !isControl(point) ? point : U'?', shown);
    }
    return String(std::string_view(shown));
}

int characters(String const& utf8) {
    int count = 0;
    for (char const c : utf8.View()) {
        // Each character has one byte that is no continuation.
        count += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    }
    return count;
}

String quoted(String const& text) {
    std::string json = "\"";
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        core::unicode::takePoint(rest, point);
        if (point == U'"' || point == U'\\') {
            json.push_back('\\');
        }
        if (isControl(point)) {
            json.append(String::format("\\u%1").argi(1, unsigned{point}, 4, 16).View());
        } else {
            core::unicode::appendPoint(point, json);
        }
    }
    json.push_back('"');
    return String(std::string_view(json));
}

String hex(unsigned long long value, int digits) {
    return String::format("0x%1").argi(1, value, digits, 16);
}

String octal(unsigned bits) {
    return String::format("%1").argi(1, bits, 4, 8);
}

}  // namespace pack
