#pragma once

#include <functional>
#include <string>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/stream/MemoryStream.h"

namespace support {

/// A stream in memory with these bytes.
inline core::ClassRef<core::MemoryStream> memory(std::string const& bytes) {
    core::Buffer const content(bytes.data(), static_cast<int>(bytes.size()));
    return new core::MemoryStream(content);
}

/// All that is left of a stream.
inline std::string rest(core::Stream& stream) {
    std::string bytes;
    char piece[999];
    for (int got = stream.Read(piece, sizeof piece); got > 0;
         got = stream.Read(piece, sizeof piece)) {
        bytes.append(piece, static_cast<std::size_t>(got));
    }
    return bytes;
}

/// Takes its data from anywhere but files.
class MemoryBuilder : public core::StreamSequencerBuilder {
public:
    using Opener = std::function<core::ClassRef<core::Stream>(int)>;
    explicit MemoryBuilder(Opener opener) : opener_(std::move(opener)) {}

    /// The bytes of the archive, and the result of writing them.
    std::string Written(int& result) {
        core::MemoryStream target;
        result = Write(target, nullptr);
        target.Seek(0);
        return rest(target);
    }

protected:
    core::ClassRef<core::Stream> OpenData(int index, int& result) override {
        auto const stream = opener_(index);
        result = stream ? 0 : -2;
        return stream;
    }

private:
    Opener const opener_;
};

}  // namespace support
