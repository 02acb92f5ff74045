#include "core/text/unicode.h"

namespace core::unicode {

namespace {

/// A length of the encoding, by the bits of its first byte.
struct Form {
    unsigned char mask;
    unsigned char lead;
    unsigned length;
    char32_t smallest;  ///< smaller values have a shorter form
};

constexpr Form forms[] = {
    {0x80, 0x00, 1, 0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
};

char32_t const largest = 0x10FFFF;

/// Decodes the first code codePoint. Returns false if it does not have this form.
bool readForm(std::string_view utf8, Form const& form, char32_t& codePoint) {
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
    codePoint = read;
    bool const surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint >= form.smallest && codePoint <= largest && !surrogate;
}

}  // namespace

bool decodeCodePoint(std::string_view& utf8, char32_t& codePoint) {
    for (Form const& form : forms) {
        if (readForm(utf8, form, codePoint)) {
            utf8.remove_prefix(form.length);
            return true;
        }
    }
    codePoint = replacement;
    utf8.remove_prefix(1);
    return false;
}

void appendCodePoint(char32_t codePoint, TextBuilder& utf8) {
    unsigned length = 1;
    while (length < 4 && codePoint >= forms[length].smallest) {
        ++length;
    }
    unsigned const shift = 6 * (length - 1);
    utf8.Append(static_cast<char>(forms[length - 1].lead | codePoint >> shift));
    for (unsigned rest = shift; rest > 0; rest -= 6) {
        utf8.Append(static_cast<char>(0x80U | (codePoint >> (rest - 6) & 0x3FU)));
    }
}

}  // namespace core::unicode
