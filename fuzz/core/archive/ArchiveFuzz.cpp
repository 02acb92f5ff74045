#include <cstdint>

#include "fuzz/require.h"
#include "tests/core/archive/MemoryBuilder.h"

namespace {

using core::StreamSequencerReader;

/// Requires a consistent reader after any input, valid or not.
void requireConsistent(StreamSequencerReader& reader, int result, std::size_t size) {
    require(result <= 0 && result >= StreamSequencerReader::wrongTrailer);
    require(reader.GetReadPosition().end >= 0 &&
            static_cast<std::size_t>(reader.GetReadPosition().end) <= size);
    std::size_t const smallest = 3840;
    require(static_cast<std::size_t>(reader.FileCount()) <= size / smallest);
    for (int i = 0; i < reader.FileCount(); ++i) {
        core::ClassRef<core::Stream> const data = reader.OpenData(i);
        require(result == 0 || !data);
        if (data) {
            require(support::rest(*data).size() == reader.File(i).GetSize());
        }
    }
}

/// Requires that a valid archive can be rebuilt and reads back the same.
void requireRewritable(StreamSequencerReader& reader) {
    int result = 1;
    std::string const bytes = support::rewritten(reader, result);
    require(result == 0);
    core::ClassRef<core::MemoryStream> const stream = support::memory(bytes);
    StreamSequencerReader again;
    again.SetStream(stream.Get());
    require(again.Read() == 0);
    require(support::rewritten(again, result) == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const bytes(data, data + size);
    core::ClassRef<core::MemoryStream> const stream = support::memory(bytes);
    StreamSequencerReader reader;
    reader.SetStream(stream.Get());
    int const result = reader.Read();
    requireConsistent(reader, result, size);
    if (result == 0 && reader.FindMisplacedFile() < 0) {
        requireRewritable(reader);
    }
    return 0;
}
