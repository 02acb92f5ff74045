#pragma once

#include <vector>

#include "core/archive/StreamSequencer.h"
#include "core/object/ClassRef.h"
#include "core/stream/ICopyCallback.h"
#include "core/stream/Stream.h"

namespace core {

/// Reads and checks an archive. Reads the metadata and, for the CRC, all data, then opens the data
/// of each file as a stream. An archive with files can be read once. After a failure the reader
/// keeps the metadata read before.
class StreamSequencerReader : public StreamSequencer {
public:
    /// The results of Read and Check.
    enum Result : int {
        valid = 0,
        alreadyRead = -999,  ///< the reader contains files
        noStream = -1,
        truncated = -2,  ///< the stream ends, or a read fails, within a section
        notAnArchive = -3,
        versionTooOld = -4,
        versionTooNew = -5,
        wrongCrc = -6,
        wrongTrailer = -7,
    };

    /// The sections of an archive, in the order of the stream.
    enum class Section {
        header,
        keyBlock,
        uniqueId,
        sourceId,
        targetId,
        attribute,
        fileCount,
        descriptor,
        data,
        trailer
    };

    /// The section being read, or in which reading stopped.
    struct ReadPosition {
        Section section = Section::header;
        int index = 0;                ///< of the attribute, the descriptor or the file's data
        long long begin = 0;          ///< offset of the section in the stream
        long long end = 0;            ///< offset of the first unread byte
        unsigned long long size = 0;  ///< of the section
    };

    char const* ClassName() const override;

    /// The stream to read, which must be able to seek. It is not owned, and must outlive the
    /// streams of OpenData. Null: no stream.
    void SetStream(Stream* stream) { stream_ = stream; }
    /// Receives the number of bytes read and the size of the stream. Cancelling makes the read fail
    /// with -ECANCELED. Null: no callback.
    void SetProgress(ICopyCallback* progress) { progress_ = progress; }

    /// Reads the stream from its start to the trailer; ignores data after it. Returns the first
    /// Result that applies.
    int Read();
    /// Same as Read, but stores only the number, offsets and sizes of the files, so that a check
    /// needs little memory. OpenData then returns null.
    int Check();

    /// Returns the faulty section, or the trailer of a valid archive.
    ReadPosition const& GetReadPosition() const { return position_; }
    /// Returns the negative errno value of the read that failed; 0 if none did, even if the stream
    /// ended early.
    int GetReadError() const { return readError_; }
    /// Returns the CRC in the trailer. GetCRC returns the one calculated from the stream.
    unsigned GetTrailerCRC() const { return trailerCrc_; }

    /// Returns the offset of the first byte after the last descriptor, where file data begin.
    long long GetDataStart() const { return dataStart_; }
    /// Returns the number of bytes of all files' data, as read from the stream.
    long long GetDataSize() const { return dataSize_; }
    /// Returns the first file whose offset is not the end of the previous file, or -1. Read accepts
    /// such an archive, but an installer that uses the offsets would install wrong data.
    int FindMisplacedFile() const;

    /// Opens the unscrambled data of a file as a read-only stream. Returns null if index is
    /// invalid, if Read has not found the archive valid, or if the file's extent is outside the
    /// data. Several streams can be read alternately; each read moves the position of the archive's
    /// stream. If data read from start to end differ from those that Read checked, the last read
    /// returns -EBUSY.
    ClassRef<Stream> OpenData(int index);

private:
    int ReadAll();
    int ReadHeader();
    int ReadIdentity();
    int ReadFiles();
    int ReadData();
    int ReadTrailer();
    bool ReadHeaderSection(Section section, void* buffer, int length, int index = 0);
    bool ReadText(Section section, String& text, int index = 0);
    bool ReadBytes(void* buffer, int length);
    void BeginSection(Section section, int index, unsigned long long size);

    Stream* stream_ = nullptr;
    ICopyCallback* progress_ = nullptr;
    long long streamSize_ = -1;
    ReadPosition position_;
    int readError_ = 0;
    bool keepsContent_ = true;
    bool isValid_ = false;
    unsigned headerFlags_ = 0;
    unsigned trailerCrc_ = 0;
    /// The end of a file's data, from the start of all data, and the CRC up to there.
    struct DataEnd {
        unsigned long long offset;
        unsigned crc;
    };
    std::vector<DataEnd> dataEnds_;  ///< preceded by the start of all data
    long long dataStart_ = 0;
    long long dataSize_ = 0;
};

}  // namespace core
