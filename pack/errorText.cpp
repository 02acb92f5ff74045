#include "pack/errorText.h"

#include <cerrno>

#include "core/archive/archiveFormat.h"
#include "core/archive/descriptorRecord.h"
#include "pack/textNames.h"

namespace pack {

using core::StreamSequencerBuilder;
using core::StreamSequencerReader;
using core::String;

namespace {

using Cause = StreamSequencerBuilder::Cause;
using Failure = StreamSequencerBuilder::Failure;
using Section = StreamSequencerReader::Section;
using ReadPosition = StreamSequencerReader::ReadPosition;

/// Returns the capacity of a text of a file in UTF-16 units; 0 if the format version lacks it.
int slotCapacity(StreamSequencerBuilder const& builder, core::StreamDescriptor::Text text) {
    for (auto const& slot : core::archive::descriptorSlots(builder.GetVersion())) {
        if (slot.text == text) {
            return slot.units;
        }
    }
    return 0;
}

/// Returns the name in the manifest of the text that failed.
String manifestKey(Failure const& failure) {
    switch (failure.cause) {
        case Cause::sourceId:
            return "sourceId";
        case Cause::targetId:
            return "targetId";
        case Cause::attribute:
            return core::message("attribute[%1]", failure.index);
        default:
            return core::message("file[%1].%2", failure.index, nameOf(*failure.text));
    }
}

struct SectionName {
    Section section;
    char const* name;
};

constexpr SectionName sectionNames[] = {
    {Section::header, "the header"},         {Section::keyBlock, "the key block"},
    {Section::uniqueId, "the unique ID"},    {Section::sourceId, "the source ID"},
    {Section::targetId, "the target ID"},    {Section::attribute, "attribute[%1]"},
    {Section::fileCount, "the file count"},  {Section::descriptor, "the descriptor of file[%1]"},
    {Section::data, "the data of file[%1]"}, {Section::trailer, "the trailer"},
};

String nameOf(ReadPosition const& position) {
    for (SectionName const& row : sectionNames) {
        if (row.section == position.section) {
            return core::message(row.name, position.index);
        }
    }
    return {};
}

core::Fault wrongOffset(StreamSequencerReader const& reader, int index) {
    unsigned long long expected = 0;
    for (int i = 0; i < index; ++i) {
        expected += reader.File(i).GetSize();
    }
    long long const descriptor =
        reader.GetDataStart() - static_cast<long long>(reader.FileCount() - index) *
                                    core::archive::descriptorSize(reader.GetVersion());
    return core::fault("Wrong offset",
                       "The descriptor of file[%1], at offset %2, has data offset %3 instead of %4",
                       index, descriptor, reader.File(index).GetOffset(), expected);
}

}  // namespace

String reasonOf(int result) {
    // The classes of the archive report a file that has changed meanwhile as -EBUSY.
    return result == -EBUSY ? String("it changed while it was read")
                            : core::cLibraryErrorText(-result);
}

core::Fault fileError(char const* title, String const& path, int result) {
    return core::fault(title, "\"%1\": %2", path, reasonOf(result));
}

core::Fault buildError(StreamSequencerBuilder const& builder, Source source, String const& path,
                       int result) {
    Failure const& failure = builder.GetFailure();
    // A cancelled Write has no cause.
    if (failure.cause == Cause::target || failure.cause == Cause::none) {
        return fileError("Archive not writable", path, result);
    }
    if (failure.cause == Cause::file && !failure.text) {
        return fileError("File not readable", builder.File(failure.index).GetOriginalPath(),
                         result);
    }
    String const name = source == Source::manifest
                            ? manifestKey(failure)
                            : core::message("the %1 of \"%2\"", nameOf(*failure.text),
                                            builder.File(failure.index).GetOriginalPath());
    if (result == -EILSEQ) {
        return core::fault("Bad text", "%1 is not UTF-8", name);
    }
    int const capacity =
        failure.text ? slotCapacity(builder, *failure.text) : core::archive::textUnits;
    if (capacity == 0) {
        return core::fault("Unsupported text", "%1 is not part of this format version", name);
    }
    return core::fault("Text too long", "%1 may have up to %2 UTF-16 units", name, capacity);
}

std::optional<core::Fault> archiveError(StreamSequencerReader const& reader, int result) {
    ReadPosition const& position = reader.GetReadPosition();
    switch (result) {
        case StreamSequencerReader::truncated:
            return core::fault("Archive truncated",
                               "It ends at offset %1, in %2 (offset %3, %4 bytes)", position.end,
                               nameOf(position), position.begin, position.size);
        case StreamSequencerReader::notAnArchive:
            return core::fault("Not an archive", "No magic \"QXRB5129\" at offset 0");
        case StreamSequencerReader::versionTooOld:
            return core::fault("Format too old",
                               "The format version at offset 8 is %1, below 0x00010000",
                               core::hex(reader.GetVersion(), 8));
        case StreamSequencerReader::versionTooNew:
            return core::fault("Format too new",
                               "The format version at offset 8 is %1, above 0x00020000",
                               core::hex(reader.GetVersion(), 8));
        case StreamSequencerReader::wrongCrc:
            return core::fault("Wrong CRC", "The CRC-32 at offset %1 is %2 instead of %3",
                               position.begin + 4, core::hex(reader.GetTrailerCRC(), 8),
                               core::hex(reader.GetCRC(), 8));
        case StreamSequencerReader::wrongTrailer:
            return core::fault("Wrong trailer", "No magic \"QXRB5129\" at offset %1",
                               position.begin + 8);
        default:
            break;
    }
    int const misplaced = reader.FindMisplacedFile();
    return misplaced < 0 ? std::nullopt : std::optional(wrongOffset(reader, misplaced));
}

}  // namespace pack
