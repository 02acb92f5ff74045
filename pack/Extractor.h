#pragma once

#include <vector>

#include "core/archive/StreamSequencerReader.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "sys/AtomicFile.h"
#include "sys/platform/Files.h"

namespace pack {

/// Extracts an archive into a directory, never outside it.
class Extractor {
public:
    using Existing = sys::AtomicFile::Existing;

    /// The archive must be valid. Errors are added to errors. Both must outlive this object.
    Extractor(core::StreamSequencerReader& archive, std::vector<core::Fault>& errors)
        : archive_(archive), errors_(errors) {}

    /// Extracts all files. Extracts none if any of them has an invalid path, shares its path with
    /// another one, or already exists; if existing files are replaced, regular ones are no error
    /// and keep their permissions. Creates the directory if missing. Returns false on any error;
    /// files extracted until then remain, each complete and with the data that was there when the
    /// archive was read. The callback receives the progress of all files; if it cancels, the file
    /// in progress fails with -ECANCELED.
    bool Extract(core::String const& directory, Existing existing, core::ICopyCallback& progress);

private:
    void RejectLongNames(core::String const& directory);
    void RejectExisting(sys::platform::ConfinedDirectory const& directory, Existing existing);
    int Write(std::size_t index, sys::platform::ConfinedDirectory const& directory,
              Existing existing, core::ICopyCallback& progress);
    void Reject(std::size_t index, core::String const& reason);

    core::StreamSequencerReader& archive_;
    std::vector<core::Fault>& errors_;
    std::vector<core::String> paths_;  ///< of each file; empty if it was rejected
};

}  // namespace pack
