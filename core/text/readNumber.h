#pragma once

#include <string_view>

namespace core {

/// What was read at the front of a text.
struct ReadNumber {
    /// The digits' value, without the sign; cut to the range's end.
    unsigned long long magnitude = 0;
    bool negative = false;
    /// The number lay outside the range.
    bool cut = false;
    /// Characters read, white space in front included; 0 when there was no digit.
    std::size_t length = 0;
};

/// Reads digits of a base (2 to 36, else nothing is read), behind white space and, when sign is
/// set, a sign. The magnitude is limited to largest, that of a negative number to one more.
ReadNumber readNumber(std::string_view text, int base, bool sign, unsigned long long largest);

/// Reads the whole text as a number without a sign, up to largest; a base of 0 means decimal, or
/// hexadecimal behind "0x". False, and the value of no use, when it is anything else.
bool readWhole(std::string_view text, int base, unsigned long long largest,
               unsigned long long& value);

/// The signed value that readNumber's result stands for.
long long signedValue(ReadNumber const& number);

}  // namespace core
