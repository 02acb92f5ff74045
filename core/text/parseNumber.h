#pragma once

#include <string_view>

namespace core {

/// The number at the start of a string.
struct ParsedNumber {
    /// The value without its sign, clamped to the range.
    unsigned long long magnitude = 0;
    bool negative = false;
    /// Whether the number was out of range.
    bool clamped = false;
    /// Characters consumed, including leading white space; 0 if there is no digit.
    std::size_t length = 0;
};

enum class Sign { rejected, allowed };

/// Parses digits of base (2 to 36, otherwise nothing is consumed) after optional white space and,
/// where allowed, a sign. The magnitude is at most largest, or largest + 1 for a negative number.
ParsedNumber parseNumber(std::string_view text, int base, Sign sign, unsigned long long largest);

/// Whether the whole of text is an unsigned number of at most largest; if so, stores it in value,
/// which is unspecified otherwise. Base 0 means hexadecimal after "0x" or "0X", otherwise decimal.
bool parseWhole(std::string_view text, int base, unsigned long long largest,
                unsigned long long& value);

/// Returns the magnitude with its sign.
long long signedValue(ParsedNumber const& number);

}  // namespace core
