#include "core/text/unicode.h"

namespace core::unicode {

namespace {

/// The forms of a character by its first byte.
struct Form {
    unsigned char mask;
    unsigned char lead;
    unsigned length;
    char32_t smallest;  ///< below it a shorter form would do
};

constexpr Form forms[] = {
    {0x80, 0x00, 1, 0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
};

char32_t const largest = 0x10FFFF;

/// The character at the front; false when it is not one of that form.
bool readForm(std::string_view utf8, Form const& form, char32_t& point) {
    auto const byteAt = [utf8](unsigned i) { return static_cast<unsigned char>(utf8[i]); };
    if ((byteAt(0) & form.mask) != form.lead || utf8.size() < form.length) {
        return false;
    }
    char32_t read = byteAt(0) & ~form.mask & 0xFFU;
    for (unsigned i = 1; i < form.length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) {
            return false;
        }
        read = read << 6 | (byteAt(i) & 0x3FU);
    }
    point = read;
    bool const surrogate = point >= 0xD800 && point <= 0xDFFF;
    return point >= form.smallest && point <= largest && !surrogate;
}

}  // namespace

bool takePoint(std::string_view& utf8, char32_t& point) {
    for (Form const& form : forms) {
        if (readForm(utf8, form, point)) {
            utf8.remove_prefix(form.length);
            return true;
        }
    }
    point = replacement;
    utf8.remove_prefix(1);
    return false;
}

void appendPoint(char32_t point, std::string& utf8) {
    unsigned length = 1;
    while (length < 4 && point >= forms[length].smallest) {
        ++length;
    }
    unsigned const shift = 6 * (length - 1);
    utf8.push_back(static_cast<char>(forms[length - 1].lead | point >> shift));
    for (unsigned rest = shift; rest > 0; rest -= 6) {
        utf8.push_back(static_cast<char>(0x80U | (point >> (rest - 6) & 0x3FU)));
    }
}

}  // namespace core::unicode
