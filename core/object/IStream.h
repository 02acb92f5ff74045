#pragma once

namespace core {

/// A source and target of bytes: a file, a socket, memory. Part of the object model because
/// strings, on which everything else is built, are loaded from and saved to streams.
class IStream {
public:
    virtual ~IStream();

    /// Reads up to count bytes into buffer. Returns the number read, 0 at the end, or a negative
    /// errno value.
    virtual int Read(void* buffer, int count) = 0;
    /// Writes up to count bytes. Returns the number written or a negative errno value.
    virtual int Write(void const* data, int count) = 0;

    /// Copies the rest of this stream to target. Returns the number of bytes copied or the negative
    /// errno value of the failed read or write; -1 if a write accepts no data.
    virtual long long WriteTo(IStream& target);
};

}  // namespace core
