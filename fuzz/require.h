#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process, which is how a fuzzer learns of a fault, unless the condition holds.
inline void require(bool holds, char const* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (!holds) {
        std::fprintf(stderr, "%s:%d does not hold\n", file, line);
        std::abort();
    }
}
