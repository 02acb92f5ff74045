#pragma once

#include "core/text/String.h"

namespace core {

/// The text with map(c), which is not NUL, in the place of each character c. It shares the text's
/// record if no character changes.
template <class Map>
String mapped(String const& text, Map map) {
    String result(text);
    char* own = nullptr;
    std::size_t index = 0;
    for (char const before : text.View()) {
        char const after = map(before);
        if (after != before) {
            own = own != nullptr ? own : result.GetBuffer();
            own[index] = after;
        }
        ++index;
    }
    return result;
}

}  // namespace core
