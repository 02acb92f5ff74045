#include "core/archive/StreamSequencerReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "core/archive/ArchivedFileStream.h"
#include "core/archive/descriptorRecord.h"
#include "core/archive/littleEndian.h"
#include "core/text/MChar.h"

namespace core {

namespace {

int const dataPiece = 0x40000;  ///< in pieces of 1 KiB most of the time goes into the calls

bool isMagic(unsigned char const* bytes) {
    return MChar8(archive::magic) == archive::getWord<std::uint64_t>(bytes);
}

}  // namespace

char const* StreamSequencerReader::ClassName() const {
    return "StreamSequencerReader";
}

int StreamSequencerReader::Read() {
    keepsContent_ = true;
    return ReadAll();
}

int StreamSequencerReader::Check() {
    keepsContent_ = false;
    return ReadAll();
}

int StreamSequencerReader::ReadAll() {
    if (FileCount() > 0) {
        return alreadyRead;
    }
    if (stream_ == nullptr) {
        return noStream;
    }
    ClearHeaders();
    sound_ = false;
    place_ = {};
    dataSize_ = 0;
    streamSize_ = stream_->Size();
    long long const start = stream_->Seek(0);
    readError_ = static_cast<int>(std::min(start, 0LL));
    if (start != 0) {
        return endsEarly;
    }
    using Step = int (StreamSequencerReader::*)();
    for (Step const step :
         {&StreamSequencerReader::ReadHeader, &StreamSequencerReader::ReadIdentity,
          &StreamSequencerReader::ReadFiles, &StreamSequencerReader::ReadData,
          &StreamSequencerReader::ReadTrailer}) {
        int const result = (this->*step)();
        if (result != sound) {
            return result;
        }
    }
    sound_ = keepsContent_;
    return sound;
}

int StreamSequencerReader::ReadHeader() {
    unsigned char header[archive::headerSize];
    Enter(Piece::header, 0, sizeof header);
    if (!Take(header, archive::headerSize)) {
        return endsEarly;
    }
    if (!isMagic(header)) {
        return notAnArchive;
    }
    SetVersion(archive::getWord<std::uint32_t>(header + 8));
    if (GetVersion() < archive::oldestVersion) {
        return versionTooOld;
    }
    if (GetVersion() > archive::newestVersion) {
        return versionTooNew;
    }
    UpdateCRC(header, archive::headerSize);
    headerFlags_ = archive::getWord<std::uint32_t>(header + 12);
    int const headers = (headerFlags_ & archive::cryptHeadersFlag) != 0 ? 1 : 0;
    int const data = (headerFlags_ & archive::cryptDataFlag) != 0 ? 2 : 0;
    SetCryptMode(static_cast<CryptMode>(headers + data));
    return sound;
}

int StreamSequencerReader::ReadIdentity() {
    unsigned char word[archive::wordSize];
    if (GetCryptMode() != CryptMode::None) {
        Enter(Piece::keyBlock, 0, sizeof word);
        if (!Take(word, archive::wordSize)) {
            return endsEarly;
        }
        // The one piece that is never scrambled: it holds the key.
        UpdateCRC(word, archive::wordSize);
        SetCryptKeyBlock(archive::getWord<std::uint64_t>(word));
    }
    if ((headerFlags_ & archive::uniqueIdFlag) != 0) {
        if (!TakeHeaderPiece(Piece::uniqueId, word, archive::wordSize)) {
            return endsEarly;
        }
        uniqueId = archive::getWord<std::uint64_t>(word);
    }
    if ((headerFlags_ & archive::sourceIdFlag) != 0 &&
        !TakeText(Piece::sourceId, sourceId.emplace())) {
        return endsEarly;
    }
    if ((headerFlags_ & archive::targetIdFlag) != 0 &&
        !TakeText(Piece::targetId, targetId.emplace())) {
        return endsEarly;
    }
    int const attributes = static_cast<int>(headerFlags_ & archive::attributeCountMask);
    for (int i = 0; i < attributes; ++i) {
        String text;
        if (!TakeText(Piece::attribute, text, i)) {
            return endsEarly;
        }
        if (keepsContent_) {
            AddAttribute(text);
        }
    }
    return sound;
}

int StreamSequencerReader::ReadFiles() {
    unsigned char word[archive::wordSize];
    if (!TakeHeaderPiece(Piece::fileCount, word, archive::wordSize)) {
        return endsEarly;
    }
    // Only the low half counts; a count that is a lie ends with the stream, not with the memory.
    auto const count = static_cast<std::int32_t>(archive::getWord<std::uint32_t>(word));
    unsigned char record[archive::largestDescriptorSize];
    for (int i = 0; i < count; ++i) {
        if (!TakeHeaderPiece(Piece::descriptor, record, archive::descriptorSize(GetVersion()), i)) {
            return endsEarly;
        }
        StreamDescriptor& file = AppendFile();
        if (keepsContent_) {
            archive::readDescriptor(record, GetVersion(), file);
        } else {
            archive::readPlace(record, file);
        }
    }
    dataStart_ = place_.end;
    return sound;
}

int StreamSequencerReader::ReadData() {
    std::vector<char> piece(dataPiece);
    dataEnds_ = {{0, GetCRC()}};
    for (int i = 0; i < FileCount(); ++i) {
        Enter(Piece::data, i, File(i).GetSize());
        for (unsigned long long left = File(i).GetSize(); left > 0;) {
            int const length = static_cast<int>(std::min<unsigned long long>(left, dataPiece));
            if (!Take(piece.data(), length)) {
                return endsEarly;
            }
            UpdateCRC(piece.data(), length);
            left -= static_cast<unsigned>(length);
        }
        if (keepsContent_) {
            auto const offset = static_cast<unsigned long long>(place_.end - dataStart_);
            dataEnds_.push_back({offset, GetCRC()});
        }
    }
    dataSize_ = place_.end - dataStart_;
    return sound;
}

int StreamSequencerReader::ReadTrailer() {
    unsigned char trailer[archive::trailerSize];
    Enter(Piece::trailer, 0, sizeof trailer);
    if (!Take(trailer, archive::trailerSize)) {
        return endsEarly;
    }
    trailerCrc_ = archive::getWord<std::uint32_t>(trailer + 4);
    if (trailerCrc_ != GetCRC()) {
        return wrongCrc;
    }
    return isMagic(trailer + 8) ? sound : wrongTrailer;
}

bool StreamSequencerReader::TakeHeaderPiece(Piece piece, void* buffer, int length, int index) {
    Enter(piece, index, static_cast<unsigned>(length));
    if (!Take(buffer, length)) {
        return false;
    }
    UpdateCRC(buffer, length);
    if (IsCryptHeadersEnabled()) {
        UncryptBlock(buffer, length, 0);
    }
    return true;
}

bool StreamSequencerReader::TakeText(Piece piece, String& text, int index) {
    unsigned char slot[archive::textSize];
    if (!TakeHeaderPiece(piece, slot, archive::textSize, index)) {
        return false;
    }
    text = archive::readTextSlot(slot, archive::textUnits);
    return true;
}

bool StreamSequencerReader::Take(void* buffer, int length) {
    auto* const bytes = static_cast<char*>(buffer);
    for (int done = 0; done < length;) {
        int const got = stream_->Read(bytes + done, length - done);
        if (got < 1) {
            readError_ = got;
            return false;
        }
        done += got;
        place_.end += got;
    }
    if (progress_ != nullptr && !progress_->Copied(place_.end, streamSize_)) {
        readError_ = -ECANCELED;
        return false;
    }
    return true;
}

void StreamSequencerReader::Enter(Piece piece, int index, unsigned long long size) {
    place_.piece = piece;
    place_.index = index;
    place_.begin = place_.end;
    place_.size = size;
}

int StreamSequencerReader::FindMisplacedFile() const {
    unsigned long long expected = 0;
    for (int i = 0; i < FileCount(); ++i) {
        if (File(i).GetOffset() != expected) {
            return i;
        }
        expected += File(i).GetSize();
    }
    return -1;
}

ClassRef<Stream> StreamSequencerReader::OpenData(int index) {
    if (!sound_ || index < 0 || index >= FileCount()) {
        return {};
    }
    StreamDescriptor const& file = File(index);
    auto const there = static_cast<unsigned long long>(dataSize_);
    bool const inside = file.GetOffset() <= there && file.GetSize() <= there - file.GetOffset();
    if (!inside) {
        return {};
    }
    auto const at = static_cast<std::size_t>(index);
    std::optional<ArchivedFileStream::RunningCrc> expected;
    if (file.GetOffset() == dataEnds_[at].offset) {
        expected = {dataEnds_[at].crc, dataEnds_[at + 1].crc};
    }
    return new ArchivedFileStream(*stream_, dataStart_, file, expected);
}

}  // namespace core
