#pragma once

#include "core/object/BasicClass.h"
#include "core/object/IStream.h"

namespace core {

/// Base of the library's own streams: a shared object that bytes are read from or written to.
/// Failures are negative error codes: an errno value with its sign changed.
class Stream : public BasicClass, public IStream {
public:
    char const* ClassName() const override;

    /// Writes all count bytes, in as many writes as it takes. Returns 0, or the negative error code
    /// of the write that failed.
    int WriteAll(void const* data, int count);
};

}  // namespace core
