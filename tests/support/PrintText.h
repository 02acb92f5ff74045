#pragma once

#include <ostream>

#include "core/text/String.h"

namespace core {

/// Makes a failed comparison print the string instead of its bytes.
inline void PrintTo(String const& text, std::ostream* out) {
    *out << '"' << text.getCString() << '"';
}

}  // namespace core
