#pragma once

namespace core {

/// Anything that bytes can be read from or written to: a file, a socket, memory.
/// Belongs to the object model because texts, which everything else builds on, are loaded from
/// and saved to streams.
class IStream {
public:
    virtual ~IStream();

    /// Reads up to count bytes into buffer. Returns the number read, which may be smaller; 0 at
    /// the end; a negative error code on failure.
    virtual int Read(void* buffer, int count) = 0;
    /// Writes up to count bytes. Returns the number written, which may be smaller; a negative
    /// error code on failure.
    virtual int Write(void const* data, int count) = 0;

    /// Copies what is left of this stream to target, in pieces. Returns the number of bytes
    /// copied, or the negative error code of the read or write that failed (-1 when target takes
    /// nothing more).
    virtual long long WriteTo(IStream& target);
};

}  // namespace core
