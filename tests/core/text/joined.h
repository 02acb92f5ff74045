#pragma once

#include <initializer_list>

#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

/// The entries, each with "|" behind it.
inline core::String joined(core::StringArray const& list) {
    return list.AsString().ReplaceNewLine("|");
}

/// The same for several results, worked out from left to right and then compared at once.
inline core::String joined(std::initializer_list<core::String> texts) {
    core::String result;
    for (core::String const& text : texts) {
        result += text + '|';
    }
    return result;
}
