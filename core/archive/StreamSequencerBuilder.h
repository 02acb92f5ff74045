#pragma once

#include <vector>

#include "core/archive/StreamSequencer.h"
#include "core/object/ClassRef.h"
#include "core/stream/ICopyCallback.h"
#include "core/stream/Stream.h"

namespace core {

/// Writes an archive from added files and their metadata, streaming the file data without holding
/// it as a whole. The output depends on nothing else and is the same on every machine.
class StreamSequencerBuilder : public StreamSequencer {
public:
    /// The part of the archive that made Write fail.
    enum class Cause { none, version, attributeCount, attribute, sourceId, targetId, file, target };

    struct Failure {
        Cause cause = Cause::none;
        int index = 0;  ///< of the attribute or the file
        /// The text that does not fit, for Cause::file; without one, the file's data failed.
        std::optional<StreamDescriptor::Text> text;
    };

    char const* ClassName() const override;

    /// Adds a file with the data of the file originalPath, which Write reads. Returns its metadata.
    StreamDescriptor& AddFile(String const& originalPath);

    /// Returns a key derived from number. None of its bytes is 0, which would leave data unchanged.
    static unsigned CalculateCryptKey(unsigned number);

    /// Writes the archive to target, which need not be able to seek, from its position on. Sets the
    /// offset and size of each file. Checks all texts before writing the first byte. A null
    /// callback is not called. Returns 0 or a negative errno value, that of opening or reading a
    /// file or of writing target, or
    /// - -EINVAL: unknown version,
    /// - -E2BIG: too many attributes,
    /// - -ENAMETOOLONG: a text does not fit into its slot,
    /// - -EILSEQ: a text is not UTF-8,
    /// - -EFBIG: the sizes of all files exceed 64 bits,
    /// - -EBUSY: a file changed its size meanwhile,
    /// - -ECANCELED: the callback cancelled.
    int Write(Stream& target, ICopyCallback* callback);
    /// Returns the cause of the last Write's failure; Cause::none if it succeeded or was cancelled.
    Failure const& GetFailure() const { return failure_; }

protected:
    /// Opens the data of a file, by default those of its original path. Returns null and stores a
    /// negative errno value in result on failure. The stream must know its size.
    virtual ClassRef<Stream> OpenData(int index, int& result);

private:
    int AssignOffsets();
    int WriteHeaders(Stream* target);
    int WriteIdentity(Stream* target);
    int WriteDescriptors(Stream* target);
    int WriteData(Stream& target, ICopyCallback* callback);
    int CopyFile(int index, Stream& source, Stream& target, std::vector<char>& chunk,
                 ICopyCallback* callback);
    int WriteTrailer(Stream& target);
    unsigned HeaderFlags() const;
    int WriteBytes(Stream* target, void const* bytes, int length);
    int WriteHeaderSection(Stream* target, void* bytes, int length);
    int WriteText(Stream* target, String const& text, Cause cause, int index = 0);
    int FailText(archive::SlotResult slot, Cause cause, int index);
    int Fail(Cause cause, int index, int result);

    Failure failure_;
    long long dataSize_ = 0;
    long long written_ = 0;  ///< number of bytes of the archive so far
};

}  // namespace core
