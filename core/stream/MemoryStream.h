#pragma once

#include <string_view>

#include "core/stream/Stream.h"
#include "core/text/Buffer.h"

namespace core {

/// A stream in memory: a block of bytes that grows as it is written to, up to INT_MAX bytes.
/// Reading and writing share one position, which starts at 0.
class MemoryStream : public Stream {
public:
    MemoryStream() = default;
    /// Begins with a copy of content.
    explicit MemoryStream(Buffer const& content) : content_(content) {}

    char const* ClassName() const override;

    int Read(void* buffer, int count) override;
    /// Writes over what is there and goes on behind it. Returns fewer bytes at the limit, then
    /// -EFBIG; -ENOMEM when memory runs out, and then the content stays as it was. The bytes must
    /// not be the stream's own.
    int Write(void const* data, int count) override;
    long long Seek(long long offset, SeekOrigin origin = SeekOrigin::begin) override;
    long long Size() override;

    /// What was written; valid until the next write.
    Buffer const& Content() const { return content_; }
    /// The same as characters.
    std::string_view View() const {
        return {reinterpret_cast<char const*>(content_.GetData()),
                static_cast<std::size_t>(content_.GetSize())};
    }
    /// Empties the stream and goes back to its start.
    void Clear();

private:
    Buffer content_;
    long long position_ = 0;
};

}  // namespace core
