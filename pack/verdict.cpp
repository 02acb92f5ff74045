#include "pack/verdict.h"

#include "pack/printable.h"

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

struct Words {
    int result;
    char const* text;  ///< title "=" message
};

// Placeholders: 1 end of what was read, 2 piece, 3 its begin, 4 its size, 5 and 6 offsets of the
// trailer's CRC and magic, 7 and 8 CRC in the trailer and of the stream, 9 version.
constexpr Words words[] = {
    {StreamSequencerReader::endsEarly,
     "Archive cut short=It ends at offset %1, in %2, which begins at offset %3 and has %4 bytes"},
    {StreamSequencerReader::notAnArchive,
     "No archive=The eight bytes at offset 0 are not \"QXRB5129\""},
    {StreamSequencerReader::versionTooOld,
     "Format too old=The format version at offset 8 is %9, below 0x00010000"},
    {StreamSequencerReader::versionTooNew,
     "Format too new=The format version at offset 8 is %9, above 0x00020000"},
    {StreamSequencerReader::wrongCrc,
     "Wrong CRC=The CRC-32 at offset %5 is %7, that of the bytes before the trailer is %8"},
    {StreamSequencerReader::wrongTrailer,
     "Wrong trailer=The eight bytes at offset %6 are not \"QXRB5129\""},
};

String nameOf(Place const& place) {
    for (PieceName const& row : pieceNames) {
        if (row.piece == place.piece) {
            return String::format(row.name).argi(1, place.index);
        }
    }
    return {};
}

String wrongOffset(StreamSequencerReader const& reader, int index) {
    unsigned long long expected = 0;
    for (int i = 0; i < index; ++i) {
        expected += reader.File(i).GetSize();
    }
    long long const record =
        reader.GetDataStart() - static_cast<long long>(reader.FileCount() - index) *
                                    core::archive::descriptorSize(reader.GetVersion());
    return String::format(
               "Wrong offset=The descriptor of file[%1], at offset %2, lays its data at %3 behind "
               "the descriptors, but they are at %4")
        .argi(1, index)
        .argi(2, record)
        .argi(3, reader.File(index).GetOffset())
        .argi(4, expected);
}

}  // namespace

String verdict(StreamSequencerReader const& reader, int result) {
    Place const& place = reader.GetPlace();
    for (Words const& row : words) {
        if (row.result == result) {
            return String::format(row.text)
                .argi(1, place.end)
                .argi(2, nameOf(place))
                .argi(3, place.begin)
                .argi(4, place.size)
                .argi(5, place.begin + 4)
                .argi(6, place.begin + 8)
                .argi(7, hex(reader.GetTrailerCRC(), 8))
                .argi(8, hex(reader.GetCRC(), 8))
                .argi(9, hex(reader.GetVersion(), 8));
        }
    }
    int const misplaced = reader.FindMisplacedFile();
    return misplaced < 0 ? String() : wrongOffset(reader, misplaced);
}

}  // namespace pack
