#pragma once

#include <string_view>

#include "core/text/String.h"

namespace core {

/// A value to insert into a template: a sign, which does not count towards width, then text padded
/// to width.
struct PaddedText {
    std::string_view sign;
    std::string_view text;
    int width = 0;
    String::Align align = String::AlignDefault;
    char fill = '\0';

    /// Whether text is to be inserted unchanged.
    bool IsPlain() const { return sign.empty() && width <= static_cast<int>(text.size()); }
};

/// A formatted number, in a buffer of its own, and its padding.
class NumberText {
public:
    NumberText(long long value, int width, int base, String::Align align, char fill);
    NumberText(unsigned long long value, int width, int base, String::Align align, char fill);
    NumberText(double value, int width, char format, int precision, String::Align align, char fill);
    NumberText(NumberText const&) = delete;
    NumberText& operator=(NumberText const&) = delete;

    /// Whether the base is from 2 to 36.
    bool IsValid() const { return valid_; }
    /// Returns the formatted number; valid as long as this object.
    PaddedText const& Padded() const { return padded_; }

private:
    void SetUnsigned(unsigned long long value, int base);
    void SetDecimal(long long value);

    // The largest double has 309 digits before the dot, plus sign, dot and NUL.
    char digits_[309 + String::MaxPrecision + 3];
    PaddedText padded_;
    bool valid_ = true;
};

}  // namespace core
