#pragma once

#include <vector>

#include "core/archive/StreamSequencerReader.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "core/text/message.h"

namespace pack {

/// Lays the files of an archive below a folder, and nothing outside it.
class Unpacker {
public:
    /// The archive must be valid. Errors are added to errors. Both must outlive this object.
    Unpacker(core::StreamSequencerReader& archive, std::vector<core::Fault>& errors)
        : archive_(archive), errors_(errors) {}

    /// Writes all files, or none when any of them has a path that cannot be used, shares it with
    /// another one, or is there already (unless replace is set). The folder is made when it is
    /// missing. False when anything failed; files written until then stay, each of them whole.
    /// The callback is told the bytes of all files.
    bool Unpack(core::String const& folder, bool replace, core::ICopyCallback& progress);

private:
    void PlanPaths();
    void RefuseClashes();
    void RefuseTaken(core::String const& folder, bool replace);
    int Write(int index, core::String const& folder, bool replace, core::ICopyCallback& progress);
    void Refuse(int index, core::String const& why);

    core::StreamSequencerReader& archive_;
    std::vector<core::Fault>& errors_;
    core::StringArray paths_{16};
};

}  // namespace pack
