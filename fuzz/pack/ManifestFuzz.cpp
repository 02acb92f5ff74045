#include <cstdlib>

#include "fuzz/Input.h"
#include "fuzz/require.h"
#include "pack/Manifest.h"
#include "sys/file.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using core::StreamSequencerBuilder;
using core::StreamSequencerReader;
using core::String;

/// Builds an archive with fixed data instead of the files of the manifest.
class Builder : public support::MemoryBuilder {
public:
    Builder() : MemoryBuilder(open) {}

private:
    static core::ClassRef<core::Stream> open(int) { return support::memory("data").Get(); }
};

/// Compares the files with the entries of the manifest, read in another way.
void requireEntries(Builder const& builder, String const& path) {
    core::StringArray conf;
    require(sys::file::loadConfFile(conf, path) == 0);
    for (int i = 0; i < builder.FileCount(); ++i) {
        String const name = String::format("file[%1].").argi(1, i);
        String const flags = conf.GetValueByName(name + "flags");
        int const base = flags.StartsWithIC("0x") ? 16 : 10;
        require(builder.File(i).GetFlags() == std::strtoul(flags.getCString(), nullptr, base));
        require(builder.File(i).GetDestination() == conf.GetValueByName(name + "destination"));
    }
}

/// Compares the archive that was read with the one that was written.
void requireSame(Builder const& written, StreamSequencerReader const& read) {
    require(read.GetVersion() == written.GetVersion());
    require(read.GetCryptMode() == written.GetCryptMode());
    require(read.uniqueId == written.uniqueId &&
            read.sourceId.has_value() == written.sourceId.has_value());
    require(read.Attributes().Count() == written.Attributes().Count());
    require(read.FileCount() == written.FileCount());
    for (int i = 0; i < read.FileCount(); ++i) {
        require(read.File(i).GetFlags() == written.File(i).GetFlags());
        require(read.File(i).GetAttributes() == written.File(i).GetAttributes());
    }
}

}  // namespace

/// The input is a manifest, whose files are not read.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static support::TemporaryDirectory const directory;
    String const path = directory.Write("manifest", Input(data, size).Rest()).c_str();

    std::vector<core::Fault> errors;
    Builder builder;
    bool const valid = pack::Manifest(errors).Load(path, builder);
    require(valid == (errors.empty()));
    for (core::Fault const& error : errors) {
        require(error.title == "Bad manifest" && !error.message.IsEmpty());
    }
    if (!valid) {
        return 0;
    }
    requireEntries(builder, path);
    int result = 1;
    auto const stream = support::memory(builder.Written(result));
    require(result <= 0);
    require((result == 0) == (builder.GetFailure().cause == StreamSequencerBuilder::Cause::none));
    if (result == 0) {
        StreamSequencerReader reader;
        reader.SetStream(stream.Get());
        require(reader.Read() == 0 && reader.FindMisplacedFile() < 0);
        requireSame(builder, reader);
    }
    return 0;
}
