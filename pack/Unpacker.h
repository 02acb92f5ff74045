#pragma once

#include <string>
#include <vector>

#include "core/archive/StreamSequencerReader.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "sys/platform/FilesBelow.h"

namespace pack {

/// Extracts the files of an archive into a directory, and nothing outside it.
class Unpacker {
public:
    /// The archive must be valid. Errors are added to errors. Both must outlive this object.
    Unpacker(core::StreamSequencerReader& archive, std::vector<core::Fault>& errors)
        : archive_(archive), errors_(errors) {}

    /// Writes all files, or none if any of them has a path that cannot be used, shares its path
    /// with another one, or exists already (unless replace is set: then a regular file is replaced,
    /// and its permissions are kept). Creates the directory if missing. Returns false if anything
    /// failed; files written until then stay, each of them complete and with the data that the
    /// archive had when it was checked. The callback receives the bytes of all files and may
    /// cancel, which is the error -ECANCELED of a file.
    bool Unpack(core::String const& directory, bool replace, core::ICopyCallback& progress);

private:
    void PlanPaths();
    void RefuseClashes();
    void RefuseLongNames(core::String const& directory);
    void RefuseTaken(sys::platform::ConfinedDirectory const& directory, bool replace);
    int Write(std::size_t index, sys::platform::ConfinedDirectory const& directory, bool replace,
              core::ICopyCallback& progress);
    void Refuse(std::size_t index, core::String const& why);

    core::StreamSequencerReader& archive_;
    std::vector<core::Fault>& errors_;
    std::vector<core::String> paths_;  ///< of each file; empty if it was rejected
};

}  // namespace pack
