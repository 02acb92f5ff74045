#include "core/archive/StreamSequencerReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <tuple>

#include "core/archive/descriptorRecord.h"
#include "core/crc/crc32.h"
#include "core/text/MChar.h"

namespace core {

namespace {

/// With chunks of 1 KiB the calls would cost more than the CRC.
int const dataChunkSize = 0x40000;

bool isMagic(unsigned char const* bytes) {
    return std::memcmp(bytes, MChar8(archive::magic).ptr(), MChar8::Size) == 0;
}

/// The CRC-32 of an archive before and after the data of a file.
struct RunningCrc {
    unsigned before;
    unsigned after;
};

/// The unscrambled data of one file of an archive; read-only. Refers to the archive's stream and
/// to the descriptor.
class ArchivedFileStream : public Stream {
public:
    /// The data of all files begin at dataStart. If expected is given, data read from start to end
    /// must change the CRC as expected: otherwise the last read returns -EBUSY, also if repeated.
    ArchivedFileStream(Stream& archive, long long dataStart, StreamDescriptor const& file,
                       std::optional<RunningCrc> const& expected)
        : archive_(archive),
          file_(file),
          begin_(dataStart + static_cast<long long>(file.GetOffset())),
          size_(static_cast<long long>(file.GetSize())),
          expected_(expected) {}

    char const* ClassName() const override { return "ArchivedFileStream"; }
    int Read(void* buffer, int count) override;
    int Write(void const*, int) override { return -EBADF; }
    long long Seek(long long offset, SeekOrigin origin) override;
    long long Size() override { return size_; }

private:
    bool Matches(void const* bytes, int length);

    Stream& archive_;
    StreamDescriptor const& file_;
    long long const begin_;
    long long const size_;
    std::optional<RunningCrc> const expected_;
    long long position_ = 0;
    long long checked_ = 0;  ///< number of leading bytes that crc_ includes
    unsigned crc_ = 0;
};

int ArchivedFileStream::Read(void* buffer, int count) {
    if (count < 1 || position_ >= size_) {
        return 0;
    }
    // Other streams of the archive share its position.
    long long const found = archive_.Seek(begin_ + position_);
    if (found < 0) {
        return static_cast<int>(found);
    }
    int const wanted = static_cast<int>(std::min<long long>(count, size_ - position_));
    int const got = archive_.Read(buffer, wanted);
    if (got > 0 && !Matches(buffer, got)) {
        return -EBUSY;
    }
    if (got > 0) {
        file_.CryptBlock(buffer, got, static_cast<unsigned long long>(position_));
        position_ += got;
    }
    // The archive contained the whole file when it was read: it has been truncated since.
    return got == 0 ? -EIO : got;
}

/// Adds the next bytes of the archive to the CRC. Returns false if they complete the file's data
/// with an unexpected CRC; the state stays, so that a repeated read fails again.
bool ArchivedFileStream::Matches(void const* bytes, int length) {
    if (!expected_) {
        return true;
    }
    if (position_ == 0) {
        checked_ = 0;
        crc_ = expected_->before;
    }
    if (position_ != checked_) {
        return true;
    }
    unsigned const crc = crc32::update(bytes, length, crc_);
    if (checked_ + length == size_ && crc != expected_->after) {
        return false;
    }
    crc_ = crc;
    checked_ += length;
    return true;
}

long long ArchivedFileStream::Seek(long long offset, SeekOrigin origin) {
    long long const found = seekPosition(offset, origin, position_, size_);
    if (found >= 0) {
        position_ = found;
    }
    return found;
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
    isValid_ = false;
    position_ = {};
    dataSize_ = 0;
    streamSize_ = stream_->Size();
    long long const start = stream_->Seek(0);
    readError_ = static_cast<int>(std::min(start, 0LL));
    if (start != 0) {
        return truncated;
    }
    using Step = int (StreamSequencerReader::*)();
    for (Step const step :
         {&StreamSequencerReader::ReadHeader, &StreamSequencerReader::ReadIdentity,
          &StreamSequencerReader::ReadFiles, &StreamSequencerReader::ReadData,
          &StreamSequencerReader::ReadTrailer}) {
        int const result = (this->*step)();
        if (result != valid) {
            return result;
        }
    }
    isValid_ = keepsContent_;
    return valid;
}

int StreamSequencerReader::ReadHeader() {
    unsigned char header[archive::headerSize];
    BeginSection(Section::header, 0, sizeof header);
    if (!ReadBytes(header, archive::headerSize)) {
        return truncated;
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
    return valid;
}

int StreamSequencerReader::ReadIdentity() {
    unsigned char word[archive::wordSize];
    if (GetCryptMode() != CryptMode::None) {
        BeginSection(Section::keyBlock, 0, sizeof word);
        if (!ReadBytes(word, archive::wordSize)) {
            return truncated;
        }
        // Not scrambled: it contains the key.
        UpdateCRC(word, archive::wordSize);
        SetCryptKeyBlock(archive::getWord<std::uint64_t>(word));
    }
    if ((headerFlags_ & archive::uniqueIdFlag) != 0) {
        if (!ReadHeaderSection(Section::uniqueId, word, archive::wordSize)) {
            return truncated;
        }
        uniqueId = archive::getWord<std::uint64_t>(word);
    }
    String text;
    for (auto const& [flag, section, id] :
         {std::tuple(archive::sourceIdFlag, Section::sourceId, &sourceId),
          std::tuple(archive::targetIdFlag, Section::targetId, &targetId)}) {
        if ((headerFlags_ & flag) == 0) {
            continue;
        }
        if (!ReadText(section, text)) {
            return truncated;
        }
        *id = text;
    }
    int const attributes = static_cast<int>(headerFlags_ & archive::attributeCountMask);
    for (int i = 0; i < attributes; ++i) {
        if (!ReadText(Section::attribute, text, i)) {
            return truncated;
        }
        if (keepsContent_) {
            AddAttribute(text);
        }
    }
    return valid;
}

int StreamSequencerReader::ReadFiles() {
    unsigned char word[archive::wordSize];
    if (!ReadHeaderSection(Section::fileCount, word, archive::wordSize)) {
        return truncated;
    }
    // Only the low half is used; a false count hits end of stream, not memory.
    auto const count = static_cast<std::int32_t>(archive::getWord<std::uint32_t>(word));
    unsigned char record[archive::largestDescriptorSize];
    for (int i = 0; i < count; ++i) {
        if (!ReadHeaderSection(Section::descriptor, record, archive::descriptorSize(GetVersion()),
                               i)) {
            return truncated;
        }
        StreamDescriptor& file = AppendFile();
        if (keepsContent_) {
            archive::readDescriptor(record, GetVersion(), file);
        } else {
            archive::readExtent(record, file);
        }
    }
    dataStart_ = position_.end;
    return valid;
}

int StreamSequencerReader::ReadData() {
    std::vector<char> chunk(dataChunkSize);
    dataEnds_ = {{0, GetCRC()}};
    for (int i = 0; i < FileCount(); ++i) {
        BeginSection(Section::data, i, File(i).GetSize());
        for (unsigned long long left = File(i).GetSize(); left > 0;) {
            int const length = static_cast<int>(std::min<unsigned long long>(left, dataChunkSize));
            if (!ReadBytes(chunk.data(), length)) {
                return truncated;
            }
            UpdateCRC(chunk.data(), length);
            left -= static_cast<unsigned>(length);
        }
        if (keepsContent_) {
            auto const offset = static_cast<unsigned long long>(position_.end - dataStart_);
            dataEnds_.push_back({offset, GetCRC()});
        }
    }
    dataSize_ = position_.end - dataStart_;
    return valid;
}

int StreamSequencerReader::ReadTrailer() {
    unsigned char trailer[archive::trailerSize];
    BeginSection(Section::trailer, 0, sizeof trailer);
    if (!ReadBytes(trailer, archive::trailerSize)) {
        return truncated;
    }
    trailerCrc_ = archive::getWord<std::uint32_t>(trailer + 4);
    if (trailerCrc_ != GetCRC()) {
        return wrongCrc;
    }
    return isMagic(trailer + 8) ? valid : wrongTrailer;
}

bool StreamSequencerReader::ReadHeaderSection(Section section, void* buffer, int length,
                                              int index) {
    BeginSection(section, index, static_cast<unsigned>(length));
    if (!ReadBytes(buffer, length)) {
        return false;
    }
    UpdateCRC(buffer, length);
    if (IsCryptHeadersEnabled()) {
        UncryptBlock(buffer, length, 0);
    }
    return true;
}

bool StreamSequencerReader::ReadText(Section section, String& text, int index) {
    unsigned char slot[archive::textSize];
    if (!ReadHeaderSection(section, slot, archive::textSize, index)) {
        return false;
    }
    text = archive::readTextSlot(slot, archive::textUnits);
    return true;
}

bool StreamSequencerReader::ReadBytes(void* buffer, int length) {
    auto* const bytes = static_cast<char*>(buffer);
    for (int done = 0; done < length;) {
        int const got = stream_->Read(bytes + done, length - done);
        if (got < 1) {
            readError_ = got;
            return false;
        }
        done += got;
        position_.end += got;
    }
    if (progress_ != nullptr && !progress_->Copied(position_.end, streamSize_)) {
        readError_ = -ECANCELED;
        return false;
    }
    return true;
}

void StreamSequencerReader::BeginSection(Section section, int index, unsigned long long size) {
    position_.section = section;
    position_.index = index;
    position_.begin = position_.end;
    position_.size = size;
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
    if (!isValid_ || index < 0 || index >= FileCount()) {
        return {};
    }
    StreamDescriptor const& file = File(index);
    auto const total = static_cast<unsigned long long>(dataSize_);
    bool const inside = file.GetOffset() <= total && file.GetSize() <= total - file.GetOffset();
    if (!inside) {
        return {};
    }
    auto const at = static_cast<std::size_t>(index);
    // A misplaced file has no CRC of its own to compare with.
    std::optional<RunningCrc> expected;
    if (file.GetOffset() == dataEnds_[at].offset) {
        expected = {dataEnds_[at].crc, dataEnds_[at + 1].crc};
    }
    return new ArchivedFileStream(*stream_, dataStart_, file, expected);
}

}  // namespace core
