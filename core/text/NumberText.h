#pragma once

#include <string_view>

#include "core/text/String.h"

namespace core {

/// A value on its way into a template: text padded to width, behind a sign that is not counted.
struct PaddedText {
    std::string_view sign;
    std::string_view text;
    int width = 0;
    String::Align align = String::AlignDefault;
    char fill = '\0';

    /// Nothing stands around the text.
    bool IsPlain() const { return sign.empty() && width <= static_cast<int>(text.size()); }
};

/// A number written out in room of its own, and how it is to be padded.
class NumberText {
public:
    NumberText(long long value, int width, int base, String::Align align, char fill);
    NumberText(unsigned long long value, int width, int base, String::Align align, char fill);
    NumberText(double value, int width, char format, int precision, String::Align align, char fill);
    NumberText(NumberText const&) = delete;
    NumberText& operator=(NumberText const&) = delete;

    /// False for a base outside 2..36.
    bool IsValid() const { return valid_; }
    /// Valid as long as this object.
    PaddedText const& Padded() const { return padded_; }

private:
    void setUnsigned(unsigned long long value, int base);
    void setDecimal(long long value);

    // The largest double has 309 digits before the point; sign, point and NUL come on top.
    char digits_[309 + String::MaxPrecision + 3];
    PaddedText padded_;
    bool valid_ = true;
};

}  // namespace core
