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
    for (int got = 0; (got = stream.Read(piece, sizeof piece)) > 0;) {
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

/// The bytes of an archive that says and holds all that a sound one does, and the result of writing
/// them.
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
