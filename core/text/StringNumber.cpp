#include <cerrno>
#include <cstdlib>
#include <limits>

#include "core/text/String.h"
#include "core/text/parseNumber.h"

namespace core {

namespace {

constexpr auto max32 = static_cast<unsigned long long>(std::numeric_limits<int>::max());
constexpr auto max64 = static_cast<unsigned long long>(std::numeric_limits<long long>::max());

void storeErrorPosition(int* errorPosition, std::size_t length, std::string_view text) {
    if (errorPosition != nullptr) {
        *errorPosition = length == text.size() ? -1 : static_cast<int>(length);
    }
}

long long parseSigned(std::string_view text, int base, unsigned long long largest,
                      int* errorPosition, long long defaultValue) {
    ParsedNumber const number = parseNumber(text, base, Sign::allowed, largest);
    if (number.length == 0) {
        return defaultValue;
    }
    storeErrorPosition(errorPosition, number.length, text);
    return signedValue(number);
}

unsigned long long parseHex(std::string_view text, unsigned long long largest, int* errorPosition,
                            unsigned long long defaultValue) {
    ParsedNumber const number = parseNumber(text, 16, Sign::rejected, largest);
    if (number.length == 0) {
        return defaultValue;
    }
    storeErrorPosition(errorPosition, number.length, text);
    return number.magnitude;
}

bool isWhole(std::string_view text, ParsedNumber const& number) {
    return number.length > 0 && number.length == text.size() && !number.clamped;
}

/// Parses a number after a prefix that only white space precedes; length counts from the start of
/// text.
ParsedNumber parsePrefixed(String const& text, unsigned long long largest) {
    struct Prefix {
        char const* text;
        int base;
    };
    static constexpr Prefix prefixes[] = {{"0x", 16}, {"0b", 2}, {"0", 8}};

    std::string_view const whole = text.View();
    std::size_t const start = whole.find_first_not_of(" \t\r\n");
    for (Prefix const& prefix : prefixes) {
        int const found = text.Find(prefix.text);
        if (found < 0 || static_cast<std::size_t>(found) != start) {
            continue;
        }
        std::size_t const digits = start + std::string_view(prefix.text).size();
        // parseNumber would skip white space between the prefix and the digits.
        bool const spaced = digits < whole.size() && String::IsWhiteSpace(whole[digits]);
        ParsedNumber number =
            parseNumber(whole.substr(digits), prefix.base, Sign::rejected, largest);
        number.length = number.length > 0 && !spaced ? number.length + digits : 0;
        return number;
    }
    return {};
}

/// Parses "min", "max", a whole decimal number or a prefixed one; length is 0 on failure.
ParsedNumber parseGeneral(String const& text, unsigned long long largest) {
    std::size_t const size = text.View().size();
    String const word = text.Trim();
    if (word.CompareIC("max") == 0) {
        return {largest, false, false, size};
    }
    if (word.CompareIC("min") == 0) {
        return {largest + 1, true, false, size};
    }
    ParsedNumber const decimal = parseNumber(text.View(), 10, Sign::allowed, largest);
    return decimal.length > 0 && decimal.length == size ? decimal : parsePrefixed(text, largest);
}

long long parseGeneral(String const& text, unsigned long long largest, int* errorPosition,
                       long long defaultValue) {
    ParsedNumber const number = parseGeneral(text, largest);
    if (number.length == 0) {
        return defaultValue;
    }
    storeErrorPosition(errorPosition, number.length, text.View());
    return signedValue(number);
}

}  // namespace

int String::ToDecimal32(int* errorPosition, int defaultValue) const {
    return static_cast<int>(parseSigned(View(), 10, max32, errorPosition, defaultValue));
}

long long String::ToDecimal64(int* errorPosition, long long defaultValue) const {
    return parseSigned(View(), 10, max64, errorPosition, defaultValue);
}

unsigned String::ToHex32(int* errorPosition, unsigned defaultValue) const {
    constexpr unsigned long long largest = std::numeric_limits<unsigned>::max();
    return static_cast<unsigned>(parseHex(View(), largest, errorPosition, defaultValue));
}

unsigned long long String::ToHex64(int* errorPosition, unsigned long long defaultValue) const {
    constexpr unsigned long long largest = std::numeric_limits<unsigned long long>::max();
    return parseHex(View(), largest, errorPosition, defaultValue);
}

long long String::ToCustom(int base, int* errorPosition, long long defaultValue) const {
    return parseSigned(View(), base, max64, errorPosition, defaultValue);
}

int String::ToInt32(int* errorPosition, int defaultValue) const {
    return static_cast<int>(parseGeneral(*this, max32, errorPosition, defaultValue));
}

long long String::ToInt64(int* errorPosition, long long defaultValue) const {
    return parseGeneral(*this, max64, errorPosition, defaultValue);
}

double String::ToFloat(int* errorPosition, double defaultValue) const {
    int const errorBefore = errno;
    char* end = nullptr;
    double const value = std::strtod(getCString(), &end);
    errno = errorBefore;

    auto const length = static_cast<std::size_t>(end - getCString());
    if (length == 0) {
        return defaultValue;
    }
    storeErrorPosition(errorPosition, length, View());
    return length == View().size() ? value : defaultValue;
}

bool String::ToBool(bool defaultValue) const {
    struct Word {
        char const* text;
        bool value;
    };
    static constexpr Word words[] = {{"true", true},   {"yes", true}, {"on", true},
                                     {"false", false}, {"no", false}, {"off", false}};

    ParsedNumber const number = parseNumber(View(), 10, Sign::allowed, max64);
    if (number.length > 0 && number.length == View().size()) {
        return number.magnitude != 0;
    }
    for (Word const& word : words) {
        if (CompareIC(word.text) == 0) {
            return word.value;
        }
    }
    return defaultValue;
}

bool String::IsDecimal32() const {
    return isWhole(View(), parseNumber(View(), 10, Sign::allowed, max32));
}

bool String::IsDecimal64() const {
    return isWhole(View(), parseNumber(View(), 10, Sign::allowed, max64));
}

bool String::IsFloat() const {
    int errorPosition = 0;
    ToFloat(&errorPosition, 0);
    return errorPosition == -1;
}

bool String::IsHex() const {
    return !IsEmpty() &&
           View().find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

bool String::IsInt32() const {
    return isWhole(View(), parseGeneral(*this, max32));
}

bool String::IsInt64() const {
    return isWhole(View(), parseGeneral(*this, max64));
}

}  // namespace core
