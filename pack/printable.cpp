#include "pack/printable.h"

#include "core/text/message.h"
#include "core/text/printable.h"
#include "core/text/unicode.h"

namespace pack {

using core::String;

int characters(String const& utf8) {
    int count = 0;
    for (char const c : utf8.View()) {
        // Each character has one byte that is no continuation.
        count += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    }
    return count;
}

String quoted(String const& text) {
    core::TextBuilder json;
    json.Append('"');
    for (std::string_view rest = text.View(); !rest.empty();) {
        char32_t point = 0;
        core::unicode::decodeCodePoint(rest, point);
        if (point == U'"' || point == U'\\') {
            json.Append('\\');
        }
        if (core::isControl(point)) {
            json.Append(String::format("\\u%1").argi(1, unsigned{point}, 4, 16).View());
        } else {
            core::unicode::appendCodePoint(point, json);
        }
    }
    json.Append('"');
    return json.AsString();
}

String octal(unsigned bits) {
    return String::format("%1").argi(1, bits, 4, 8);
}

}  // namespace pack
