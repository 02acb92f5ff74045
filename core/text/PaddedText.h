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

}  // namespace core
