#include "pack/verdict.h"

namespace pack {

using core::StreamSequencerReader;
using core::String;

namespace {

using Section = StreamSequencerReader::Section;
using ReadPosition = StreamSequencerReader::ReadPosition;

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
    long long const record =
        reader.GetDataStart() - static_cast<long long>(reader.FileCount() - index) *
                                    core::archive::descriptorSize(reader.GetVersion());
    return core::fault("Wrong offset",
                       "The descriptor of file[%1], at offset %2, lays its data at %3 behind the "
                       "descriptors, but they are at %4",
                       index, record, reader.File(index).GetOffset(), expected);
}

}  // namespace

std::optional<core::Fault> verdict(StreamSequencerReader const& reader, int result) {
    ReadPosition const& position = reader.GetReadPosition();
    switch (result) {
        case StreamSequencerReader::truncated:
            return core::fault("Archive cut short",
                               "It ends at offset %1, in %2, which begins at offset %3 and has %4 "
                               "bytes",
                               position.end, nameOf(position), position.begin, position.size);
        case StreamSequencerReader::notAnArchive:
            return core::fault("No archive", "The eight bytes at offset 0 are not \"QXRB5129\"");
        case StreamSequencerReader::versionTooOld:
            return core::fault("Format too old",
                               "The format version at offset 8 is %1, below 0x00010000",
                               core::hex(reader.GetVersion(), 8));
        case StreamSequencerReader::versionTooNew:
            return core::fault("Format too new",
                               "The format version at offset 8 is %1, above 0x00020000",
                               core::hex(reader.GetVersion(), 8));
        case StreamSequencerReader::wrongCrc:
            return core::fault("Wrong CRC",
                               "The CRC-32 at offset %1 is %2, that of the bytes before the "
                               "trailer is %3",
                               position.begin + 4, core::hex(reader.GetTrailerCRC(), 8),
                               core::hex(reader.GetCRC(), 8));
        case StreamSequencerReader::wrongTrailer:
            return core::fault("Wrong trailer", "The eight bytes at offset %1 are not \"QXRB5129\"",
                               position.begin + 8);
        default:
            break;
    }
    int const misplaced = reader.FindMisplacedFile();
    return misplaced < 0 ? std::nullopt : std::optional(wrongOffset(reader, misplaced));
}

}  // namespace pack
