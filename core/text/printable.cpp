#include "core/text/printable.h"

#include <algorithm>
#include <iterator>

#include "core/text/unicode.h"

namespace core {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range controls[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x61C, 0x61C},
                              {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

}  // namespace

bool isControl(char32_t codePoint) {
    return std::any_of(std::begin(controls), std::end(controls), [codePoint](Range const& range) {
        return codePoint >= range.first && codePoint <= range.last;
    });
}

String printable(String const& text) {
    TextBuilder shown;
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t codePoint = 0;
        bool const valid = unicode::decodeCodePoint(rest, codePoint);
        unicode::appendCodePoint(valid && !isControl(codePoint) ? codePoint : U'?', shown);
    }
    return shown.AsString();
}

}  // namespace core
