#pragma once

#include <cstdio>
#include <cstdlib>

/// Aborts the process, which a fuzzer reports as a fault, unless the condition holds.
inline void require(bool holds, char const* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (!holds) {
        std::fprintf(stderr, "%s:%d: condition does not hold\n", file, line);
        std::abort();
    }
}
