#pragma once

namespace core {

template <class Word>
class MChar;

/// A tag of up to four characters as one 32-bit value; see core/text/MChar4.h.
using MChar4 = MChar<unsigned int>;
/// A tag of up to eight characters as one 64-bit value; see core/text/MChar8.h.
using MChar8 = MChar<unsigned long long>;

}  // namespace core
