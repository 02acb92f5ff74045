#pragma once

#include "core/archive/StreamSequencerReader.h"
#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "device/Intake.h"
#include "sys/ReplacementFile.h"

namespace device {

/// Keeps an update in a file while it arrives, where it is to be looked into or stored.
class Inbox {
public:
    /// device is what the names of stored files begin with.
    Inbox(Intake const& intake, core::String const& device);
    Inbox(Inbox const&) = delete;
    Inbox& operator=(Inbox const&) = delete;
    /// Deletes the file, unless it was stored.
    ~Inbox();

    bool TakesArchivesOnly() const { return intake_.archivesOnly; }
    bool Stores() const { return !intake_.folder.IsEmpty(); }

    /// Keeps length more bytes; false when they could not be written.
    bool Keep(void const* bytes, int length);
    /// Reads all that was kept as an archive, as StreamSequencerReader::Read does. The reader may
    /// be used until the file is stored.
    int ReadArchive(core::StreamSequencerReader& reader);
    /// Gives the file its name in the folder, "device-number.rvl", and tells it: 0, or a negative
    /// error code. Until then nothing of that name is there.
    int Store(core::String& path);

private:
    /// Opens the file unless it is open.
    int Open();

    Intake const& intake_;
    core::String const device_;
    core::String target_;                 ///< of the stored file
    sys::ReplacementFile stored_;         ///< the file where updates are stored
    core::String temporaryPath_;          ///< that of the other
    core::FileStream temporary_;          ///< the file where they are not
    core::HandleStream* file_ = nullptr;  ///< the one in use, once it is open
};

}  // namespace device
