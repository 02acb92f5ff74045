#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/stream/FileStream.h"
#include "core/text/String.h"

namespace device {

/// Keeps an update in a temporary file while it arrives, to look into it before it is accepted.
class Inbox {
public:
    Inbox() = default;
    Inbox(Inbox const&) = delete;
    Inbox& operator=(Inbox const&) = delete;
    /// Deletes the file.
    ~Inbox();

    /// Keeps length more bytes; false when they could not be written.
    bool Keep(void const* bytes, int length);
    /// Reads all that was kept as an archive, as StreamSequencerReader::Read does. The reader may
    /// be used as long as the inbox lives.
    int ReadArchive(core::StreamSequencerReader& reader);

private:
    core::String path_;  ///< empty until something is kept
    core::FileStream file_;
};

}  // namespace device
