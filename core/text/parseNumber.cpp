#include "core/text/parseNumber.h"

#include "core/text/String.h"

namespace core {

namespace {

int digitOf(char c) {
    if (String::IsNumeric(c)) {
        return c - '0';
    }
    return String::IsAlphabetic(c) ? String::ToUpper(c) - 'A' + 10 : 36;
}

/// White space as strtoll() skips it: more than String::IsWhiteSpace.
constexpr char leadingSpace[] = " \t\n\v\f\r";

}  // namespace

ParsedNumber parseNumber(std::string_view text, int base, Sign sign, unsigned long long largest) {
    ParsedNumber result;
    std::size_t at = text.find_first_not_of(leadingSpace);
    if (base < 2 || base > 36 || at == std::string_view::npos) {
        return result;
    }
    if (sign == Sign::allowed && (text[at] == '-' || text[at] == '+')) {
        result.negative = text[at] == '-';
        ++at;
    }
    unsigned long long const limit = result.negative ? largest + 1 : largest;
    auto const radix = static_cast<unsigned long long>(base);
    for (; at < text.size() && digitOf(text[at]) < base; ++at) {
        auto const digit = static_cast<unsigned long long>(digitOf(text[at]));
        result.clamped =
            result.clamped || digit > limit || result.magnitude > (limit - digit) / radix;
        result.magnitude = result.clamped ? limit : result.magnitude * radix + digit;
        result.length = at + 1;
    }
    return result;
}

bool parseWhole(std::string_view text, int base, unsigned long long largest,
                unsigned long long& value) {
    if (base == 0) {
        bool const prefixed = text.starts_with("0x") || text.starts_with("0X");
        base = prefixed ? 16 : 10;
        text.remove_prefix(prefixed ? 2 : 0);
    }
    ParsedNumber const number = parseNumber(text, base, Sign::rejected, largest);
    value = number.magnitude;
    return number.length == text.size() && number.length > 0 && !number.clamped;
}

long long signedValue(ParsedNumber const& number) {
    return static_cast<long long>(number.negative ? 0 - number.magnitude : number.magnitude);
}

}  // namespace core
