#include "core/text/cStrings.h"

#include <cstring>
#include <limits>
#include <type_traits>

#include "core/text/String.h"
#include "core/text/parseNumber.h"

namespace core {

namespace {

std::string_view viewOf(char const* text) {
    return text != nullptr ? text : "";
}

template <class Number>
ParsedNumber parse(std::string_view text) {
    return parseNumber(text, 10, Sign::allowed,
                       static_cast<unsigned long long>(std::numeric_limits<Number>::max()));
}

template <class Number>
Number valueOf(ParsedNumber const& number) {
    if constexpr (std::is_unsigned_v<Number>) {
        return number.negative ? 0 : static_cast<Number>(number.magnitude);
    } else {
        return static_cast<Number>(signedValue(number));
    }
}

template <class Number>
Number leadingNumber(char const* text) {
    return valueOf<Number>(parse<Number>(viewOf(text)));
}

/// Stores the number if it is the whole text. Returns false, leaving value unchanged, otherwise.
template <class Number>
bool parseWholeNumber(std::string_view text, Number& value) {
    ParsedNumber const number = parse<Number>(text);
    if (number.length == 0 || number.length != text.size()) {
        return false;
    }
    value = valueOf<Number>(number);
    return true;
}

template <class Number>
Number parseWholeOr(char const* text, Number value) {
    parseWholeNumber(viewOf(text), value);
    return value;
}

template <class Number>
int parseList(char const* text, Number* values, int count, Number defaultValue, char separator) {
    String rest(text);
    int filled = 0;
    for (int i = 0; values != nullptr && i < count; ++i) {
        values[i] = defaultValue;
        String const entry = rest.ExtractNextToken(separator).Trim();
        filled += static_cast<int>(parseWholeNumber(entry.View(), values[i]));
    }
    return filled;
}

}  // namespace

char* _strNCpy(char* target, char const* source, int size) {
    _strCopyLimited(target, size, source);
    return target;
}

int _strCopyLimited(char* target, int size, char const* source) {
    if (target == nullptr || size < 1) {
        return 0;
    }
    int length = 0;
    // Do not use strlen: the source may be much longer than what fits.
    for (; source != nullptr && length < size - 1 && source[length] != '\0'; ++length) {
        target[length] = source[length];
    }
    target[length] = '\0';
    return length;
}

int _strConcatLimited(char* target, int size, char const* source) {
    if (target == nullptr || size < 1) {
        return 0;
    }
    auto const* const end =
        static_cast<char*>(std::memchr(target, '\0', static_cast<std::size_t>(size)));
    int const used = end != nullptr ? static_cast<int>(end - target) : size - 1;
    return _strCopyLimited(target + used, size - used, source);
}

char const* _strChr(char const* text, char c) {
    return text != nullptr && c != '\0' ? std::strchr(text, c) : nullptr;
}

int strToInt(char const* text) {
    return leadingNumber<int>(text);
}

unsigned strToUInt(char const* text) {
    return leadingNumber<unsigned>(text);
}

long long strToInt64(char const* text) {
    return leadingNumber<long long>(text);
}

unsigned long long strToUInt64(char const* text) {
    return leadingNumber<unsigned long long>(text);
}

double strToFloat(char const* text) {
    String const whole(text);
    int end = -1;
    double const value = whole.ToFloat(&end, 0);
    // ToFloat accepts whole strings only: remove the rest first.
    return end > 0 ? whole.Left(end).ToFloat() : value;
}

int strToIntDef(char const* text, int defaultValue) {
    return parseWholeOr(text, defaultValue);
}

unsigned strToUIntDef(char const* text, unsigned defaultValue) {
    return parseWholeOr(text, defaultValue);
}

long long strToInt64Def(char const* text, long long defaultValue) {
    return parseWholeOr(text, defaultValue);
}

unsigned long long strToUInt64Def(char const* text, unsigned long long defaultValue) {
    return parseWholeOr(text, defaultValue);
}

double strToFloatDef(char const* text, double defaultValue) {
    return String(text).ToFloat(defaultValue);
}

int strToIntArrayDef(char const* text, int* values, int count, int defaultValue, char separator) {
    return parseList(text, values, count, defaultValue, separator);
}

int strToUIntArrayDef(char const* text, unsigned* values, int count, unsigned defaultValue,
                      char separator) {
    return parseList(text, values, count, defaultValue, separator);
}

int strToInt64ArrayDef(char const* text, long long* values, int count, long long defaultValue,
                       char separator) {
    return parseList(text, values, count, defaultValue, separator);
}

}  // namespace core
