#pragma once

#include "core/text/String.h"

namespace core {

/// Returns text with each character c replaced by map(c), which must not be NUL. The result shares
/// the record of text if no character changes.
template <class Map>
String mapCharacters(String const& text, Map map) {
    String result(text);
    char* buffer = nullptr;
    std::size_t index = 0;
    for (char const before : text.View()) {
        char const after = map(before);
        if (after != before) {
            buffer = buffer != nullptr ? buffer : result.GetBuffer();
            buffer[index] = after;
        }
        ++index;
    }
    return result;
}

}  // namespace core
