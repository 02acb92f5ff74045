#pragma once

#include <functional>
#include <string>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/stream/MemoryStream.h"

namespace support {

/// Returns a stream in memory with these bytes.
inline core::ClassRef<core::MemoryStream> memory(std::string const& bytes) {
    core::Buffer const content(bytes.data(), static_cast<int>(bytes.size()));
    return new core::MemoryStream(content);
}

/// Reads the rest of a stream.
inline std::string rest(core::Stream& stream) {
    std::string bytes;
    char chunk[999];
    for (int got = 0; (got = stream.Read(chunk, sizeof chunk)) > 0;) {
        bytes.append(chunk, static_cast<std::size_t>(got));
    }
    return bytes;
}

/// Builds archives in memory.
class MemoryBuilder : public core::StreamSequencerBuilder {
public:
    using Opener = std::function<core::ClassRef<core::Stream>(int)>;
    explicit MemoryBuilder(Opener opener) : opener_(std::move(opener)) {}

    /// Returns the bytes of the archive and stores the result of Write.
    std::string Written(int& result, core::ICopyCallback* callback = nullptr) {
        core::MemoryStream target;
        result = Write(target, callback);
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

/// Builds an archive with the content of a valid one. Returns its bytes and stores the result of
/// Write.
inline std::string rewritten(core::StreamSequencerReader& from, int& result) {
    MemoryBuilder builder([&](int index) { return from.OpenData(index); });
    builder.SetVersion(from.GetVersion());
    builder.SetCryptMode(from.GetCryptMode());
    builder.SetCryptKeyBlock(from.GetCryptKeyBlock() != 0 ? from.GetCryptKeyBlock() : 0x82);
    builder.uniqueId = from.uniqueId;
    builder.sourceId = from.sourceId;
    builder.targetId = from.targetId;
    for (int i = 0; i < from.Attributes().Count(); ++i) {
        builder.AddAttribute(from.Attributes()[i]);
    }
    for (int i = 0; i < from.FileCount(); ++i) {
        core::StreamDescriptor& file = builder.AddFile("");
        file.SetFlags(from.File(i).GetFlags());
        file.SetAttributes(from.File(i).GetAttributes());
        for (int each = 0; each < core::StreamDescriptor::textCount; ++each) {
            auto const text = static_cast<core::StreamDescriptor::Text>(each);
            file.SetText(text, from.File(i).GetText(text));
        }
    }
    return builder.Written(result);
}

}  // namespace support
