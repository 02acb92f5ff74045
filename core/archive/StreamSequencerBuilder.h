#pragma once

#include <vector>

#include "core/archive/StreamSequencer.h"
#include "core/object/ClassRef.h"
#include "core/stream/ICopyCallback.h"
#include "core/stream/Stream.h"

namespace core {

/// Writes an archive: files are added with all that the archive is to say of them, then their data
/// run from their files into the stream, never held as a whole. What is written depends on nothing
/// else, so the same archive comes out on any machine.
class StreamSequencerBuilder : public StreamSequencer {
public:
    /// What an archive could not be written for.
    enum class Cause { none, version, attributeCount, attribute, sourceId, targetId, file, target };

    struct Failure {
        Cause cause = Cause::none;
        int index = 0;  ///< of the attribute or the file
        /// The text of a file that is at fault; none: its data are.
        std::optional<StreamDescriptor::Text> text;
    };

    char const* ClassName() const override;

    /// Adds a file whose data are those of originalPath.
    StreamDescriptor& AddFile(String const& originalPath);

    /// A key made from any number; none of its bytes is 0, which would leave bytes plain.
    static unsigned CalculateCryptKey(unsigned number);

    /// Writes the archive from target's position on, which need not be able to seek. Sets the
    /// place of each file. 0, or a negative error code (an errno value with its sign changed):
    /// -EINVAL the version, -E2BIG too many attributes, -ENAMETOOLONG a text that its slot has no
    /// room for, -EILSEQ a text that is not UTF-8, -EBUSY a file that changed its size while it
    /// was read, -ECANCELED the callback (null: nobody) said so; otherwise what opening or
    /// reading a file or writing target gave. Texts are looked at before the first byte goes out.
    int Write(Stream& target, ICopyCallback* callback);
    /// What was wrong when the last Write failed.
    Failure const& GetFailure() const { return failure_; }

protected:
    /// Opens the data of a file, by default its original path; empty with a negative error code in
    /// result. The stream must know its size.
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
    long long written_ = 0;  ///< bytes of the archive so far
};

}  // namespace core
