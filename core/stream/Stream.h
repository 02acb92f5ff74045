#pragma once

#include "core/object/BasicClass.h"
#include "core/object/IStream.h"
#include "core/stream/ICopyCallback.h"
#include "sys/platform/Files.h"

namespace core {

/// Base of the library's own streams: a shared object that bytes are read from or written to.
/// Failures are negative error codes: an errno value with its sign changed. Positions and sizes are
/// in bytes; a stream that knows none of them, like a pipe, answers -ESPIPE.
class Stream : public BasicClass, public IStream {
public:
    using SeekOrigin = sys::platform::SeekOrigin;

    char const* ClassName() const override;

    /// Moves the position of the next read or write, also past the end: a write there fills what
    /// lies between with NUL. Returns the new position, counted from the start; -EINVAL for one
    /// before the start, and then nothing moves.
    virtual long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin);
    /// The present position.
    long long Tell() { return Seek(0, SeekOrigin::current); }
    virtual long long Size();
    /// Waits until all that was written is where it lasts; 0 on success.
    virtual int Sync();

    /// Writes all count bytes, in as many writes as it takes. Returns 0, or the negative error code
    /// of the write that failed.
    int WriteAll(void const* data, int count);

    /// Copies what is left of this stream to target, in pieces, and returns the number of bytes
    /// copied; on failure the negative error code of the step that failed, -ECANCELED when the
    /// callback (null: nobody) said so. What was copied until then stays in target.
    /// - sparse: pieces of nothing but NUL are not written but skipped, so that a file gets holes
    ///   there. Target must then be able to seek and hold nothing from its position on.
    /// - sync: ends with target's Sync.
    long long CopyTo(Stream& target, bool sparse, bool sync, ICopyCallback* callback);
};

/// The position that a Seek of a stream with a known position and size leads to, or the negative
/// error code for one that there is not: see Stream::Seek.
long long seekPosition(long long offset, sys::platform::SeekOrigin origin, long long position,
                       long long size);

}  // namespace core
