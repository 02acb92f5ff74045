#pragma once

#include <vector>

#include "core/archive/StreamSequencer.h"
#include "core/object/ClassRef.h"
#include "core/stream/ICopyCallback.h"
#include "core/stream/Stream.h"

namespace core {

/// Reads an archive: takes in all that it says, runs through the data of its files for the CRC, and
/// gives each file's data as a stream. An archive is taken in once; of a bad one the reader keeps
/// what came before the fault.
class StreamSequencerReader : public StreamSequencer {
public:
    enum Result : int {
        valid = 0,
        alreadyRead = -999,  ///< the reader holds files
        noStream = -1,
        truncated = -2,  ///< the stream ends, or a read fails, within a piece
        notAnArchive = -3,
        versionTooOld = -4,
        versionTooNew = -5,
        wrongCrc = -6,
        wrongTrailer = -7,
    };

    /// The pieces of an archive, in the order of the stream.
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

    /// Where reading stands, or stopped.
    struct ReadPosition {
        Section section = Section::header;
        int index = 0;                ///< of the attribute, the descriptor or the file's data
        long long begin = 0;          ///< offset of the piece in the stream
        long long end = 0;            ///< offset up to which the stream was read
        unsigned long long size = 0;  ///< of the piece
    };

    char const* ClassName() const override;

    /// The stream to read, which must be able to seek. It is used, not owned, also by the streams
    /// of OpenData. Null: none.
    void SetStream(Stream* stream) { stream_ = stream; }
    /// Receives the number of bytes read and the size of the stream; it can cancel Read, which is a
    /// read error of -ECANCELED. Null: no callback.
    void SetProgress(ICopyCallback* progress) { progress_ = progress; }

    /// Reads the stream from its start: the first Result that applies. What comes behind the
    /// trailer is not looked at.
    int Read();
    /// The same, but keeps of each file only its number, offset and size, and no attributes: a mere
    /// check must not need memory for all texts of an archive. OpenData then returns nothing.
    int Check();

    /// Where Read stopped: the faulty piece, or the trailer of a sound archive.
    ReadPosition const& GetReadPosition() const { return position_; }
    /// The negative error code of the read that failed, where it was not the stream that ended; 0
    /// when none did.
    int GetReadError() const { return readError_; }
    /// The CRC in the trailer; GetCRC is that of the stream.
    unsigned GetTrailerCRC() const { return trailerCrc_; }

    /// Offset of the first byte behind the last descriptor, where the files' data start.
    long long GetDataStart() const { return dataStart_; }
    /// The bytes of all files' data, which were really there.
    long long GetDataSize() const { return dataSize_; }
    /// The first file that does not begin where the one before it ends, as its offset has it; -1
    /// when all do. Reading does not mind, but somebody who installs by offset would get other
    /// data than the CRC has seen.
    int FindMisplacedFile() const;

    /// The data of a file, unscrambled, as a stream that can be read and can seek. Empty when there
    /// is no such file, when Read did not find the archive valid, or when the data that its
    /// descriptor claims lie outside those of the archive.
    /// Several streams may be read alternately; each read moves the position of the archive's
    /// stream. Read from start to end, a stream compares its bytes with those that Read found: if
    /// they differ, its last read returns -EBUSY.
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
    /// Where the data of a file end, counted from the start of all data, and the CRC up to there.
    struct DataEnd {
        unsigned long long offset;
        unsigned crc;
    };
    std::vector<DataEnd> dataEnds_;  ///< the first is that of no file
    long long dataStart_ = 0;
    long long dataSize_ = 0;
};

}  // namespace core
