#pragma once

#include <string_view>

#include "core/stream/Stream.h"
#include "core/text/Buffer.h"

namespace core {

/// A stream in memory, which grows as needed, up to INT_MAX bytes. Reads and writes share one
/// position, which starts at 0.
class MemoryStream : public Stream {
public:
    MemoryStream() = default;
    /// Creates a stream of a copy of content.
    explicit MemoryStream(Buffer const& content) : content_(content) {}

    char const* ClassName() const override;

    int Read(void* buffer, int count) override;
    /// Overwrites bytes at the position and appends the rest; data must not be part of the stream.
    /// Returns the number written, which is less than count at the size limit; after that -EFBIG,
    /// or -ENOMEM if out of memory, leaving the content unchanged.
    int Write(void const* data, int count) override;
    long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin) override;
    long long Size() override;

    /// Returns the content; valid until the next change.
    Buffer const& Content() const { return content_; }
    /// Returns the content as characters; valid until the next change.
    std::string_view View() const {
        return {reinterpret_cast<char const*>(content_.GetData()),
                static_cast<std::size_t>(content_.GetSize())};
    }
    /// Removes the content and sets the position to 0.
    void Clear();

private:
    Buffer content_;
    long long position_ = 0;
};

}  // namespace core
