#include "pack/verdict.h"

namespace pack {

using core::StreamSequencerReader;
using core::String;

namespace {

using Piece = StreamSequencerReader::Piece;
using Place = StreamSequencerReader::Place;

struct PieceName {
    Piece piece;
    char const* name;
};

constexpr PieceName pieceNames[] = {
    {Piece::header, "the header"},         {Piece::keyBlock, "the key block"},
    {Piece::uniqueId, "the unique ID"},    {Piece::sourceId, "the source ID"},
    {Piece::targetId, "the target ID"},    {Piece::attribute, "attribute[%1]"},
    {Piece::fileCount, "the file count"},  {Piece::descriptor, "the descriptor of file[%1]"},
    {Piece::data, "the data of file[%1]"}, {Piece::trailer, "the trailer"},
};

String nameOf(Place const& place) {
    for (PieceName const& row : pieceNames) {
        if (row.piece == place.piece) {
            return core::message(row.name, place.index);
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
    Place const& place = reader.GetPlace();
    switch (result) {
        case StreamSequencerReader::endsEarly:
            return core::fault("Archive cut short",
                               "It ends at offset %1, in %2, which begins at offset %3 and has %4 "
                               "bytes",
                               place.end, nameOf(place), place.begin, place.size);
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
                               place.begin + 4, core::hex(reader.GetTrailerCRC(), 8),
                               core::hex(reader.GetCRC(), 8));
        case StreamSequencerReader::wrongTrailer:
            return core::fault("Wrong trailer", "The eight bytes at offset %1 are not \"QXRB5129\"",
                               place.begin + 8);
        default:
            break;
    }
    int const misplaced = reader.FindMisplacedFile();
    return misplaced < 0 ? std::nullopt : std::optional(wrongOffset(reader, misplaced));
}

}  // namespace pack
