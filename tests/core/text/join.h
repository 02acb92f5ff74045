#pragma once

#include <initializer_list>

#include "core/text/StringArray.h"
#include "tests/support/PrintText.h"

/// Returns the entries, each followed by "|".
inline core::String join(core::StringArray const& list) {
    return list.AsString().ReplaceNewLine("|");
}

/// The same for several results, evaluated from left to right, to compare them at once.
inline core::String join(std::initializer_list<core::String> results) {
    core::String result;
    for (core::String const& text : results) {
        result += text + '|';
    }
    return result;
}
