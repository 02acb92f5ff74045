#pragma once

#include "core/object/BasicClass.h"
#include "core/object/IStream.h"
#include "core/stream/ICopyCallback.h"
#include "sys/platform/Files.h"

namespace core {

struct CopyOptions {
    /// Seek over chunks of NUL instead of writing them, which creates holes in a file. The target
    /// must be seekable and contain nothing from its position on.
    bool sparse = false;
    /// Finally call the target's Sync.
    bool sync = false;
    /// Receives the progress; null: none.
    ICopyCallback* callback = nullptr;
};

/// Base of the library's streams: shared objects with a position. Failures are negative errno
/// values. Positions and sizes are in bytes; streams without them, such as pipes, return -ESPIPE.
class Stream : public BasicClass, public IStream {
public:
    using SeekOrigin = sys::platform::SeekOrigin;

    char const* ClassName() const override;

    /// Sets the position of the next read or write, which may be after the end: a write there fills
    /// the gap with NUL. Returns the new position; -EINVAL for one before the start, leaving the
    /// position unchanged.
    virtual long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin);
    /// Returns the position.
    long long Tell() { return Seek(0, SeekOrigin::current); }
    /// Returns the size.
    virtual long long Size();
    /// Flushes written data to stable storage; returns 0 on success.
    virtual int Sync();

    /// Writes all count bytes. Returns 0 or the negative errno value of the failed write.
    int WriteAll(void const* data, int count);

    /// Copies the rest of this stream to target. Returns the number of bytes copied or the negative
    /// errno value of the failed step: -ECANCELED if the callback cancels the copy. A failed copy
    /// leaves data in target.
    long long CopyTo(Stream& target, CopyOptions const& options = {});
};

/// Returns the new position of a stream for Stream::Seek, given its position and size: a negative
/// errno value if the new one would be out of range.
long long seekPosition(long long offset, sys::platform::SeekOrigin origin, long long position,
                       long long size);

}  // namespace core
