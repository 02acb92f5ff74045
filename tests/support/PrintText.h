#pragma once

#include <ostream>

#include "core/text/String.h"

namespace core {

/// Lets a failed comparison show the text instead of its bytes.
inline void PrintTo(String const& text, std::ostream* out) {
    *out << '"' << text.getCString() << '"';
}

}  // namespace core
