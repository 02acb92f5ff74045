#include "core/text/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace core {

namespace {

String::Align alignOfNumber(String::Align align) {
    return align == String::AlignDefault ? String::AlignRight : align;
}

}  // namespace

NumberText::NumberText(long long value, int width, int base, String::Align align, char fill)
    : padded_{{}, {}, width, alignOfNumber(align), fill} {
    if (base == 10) {
        SetDecimal(value);
    } else {
        SetUnsigned(static_cast<unsigned long long>(value), base);
    }
}

NumberText::NumberText(unsigned long long value, int width, int base, String::Align align,
                       char fill)
    : padded_{{}, {}, width, alignOfNumber(align), fill} {
    SetUnsigned(value, base);
}

NumberText::NumberText(double value, int width, char format, int precision, String::Align align,
                       char fill)
    : padded_{{}, {}, width, alignOfNumber(align), fill} {
    bool const known = format != '\0' && std::strchr("aAeEfFgG", format) != nullptr;
    char pattern[16];
    if (precision < 0) {
        std::snprintf(pattern, sizeof pattern, "%%%c", known ? format : 'g');
    } else {
        std::snprintf(pattern, sizeof pattern, "%%.%d%c", std::min(precision, String::MaxPrecision),
                      known ? format : 'g');
    }
    int const length = std::snprintf(digits_, sizeof digits_, pattern, value);
    padded_.text = {digits_, static_cast<std::size_t>(std::max(length, 0))};
}

void NumberText::SetUnsigned(unsigned long long value, int base) {
    valid_ = base >= 2 && base <= 36;
    if (!valid_) {
        return;
    }
    char* const end = std::to_chars(digits_, digits_ + sizeof digits_, value, base).ptr;
    std::transform(digits_, end, digits_, String::ToUpper);
    padded_.text = {digits_, static_cast<std::size_t>(end - digits_)};
    if (padded_.fill == '\0' && base != 10 && padded_.align == String::AlignRight) {
        padded_.fill = '0';
    }
}

void NumberText::SetDecimal(long long value) {
    char* const end = std::to_chars(digits_, digits_ + sizeof digits_, value).ptr;
    padded_.text = {digits_, static_cast<std::size_t>(end - digits_)};
    bool const signFirst = padded_.fill != '\0' && padded_.fill != ' ';
    if (value < 0 && signFirst) {
        padded_.sign = padded_.text.substr(0, 1);
        padded_.text.remove_prefix(1);
    }
}

}  // namespace core
