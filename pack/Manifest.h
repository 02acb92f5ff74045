#pragma once

#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "sys/ConfFile.h"

namespace pack {

/// Reads the manifest of an archive, a configuration file. docs/ravelink-pack.md lists its names.
class Manifest {
public:
    /// Errors are added to errors, which must outlive this object.
    explicit Manifest(std::vector<core::Fault>& errors)
        : errors_(errors), file_("Bad manifest", errors) {}

    /// Reads the manifest at path into the builder. Returns false if it has errors, of which an
    /// unknown name is one.
    bool Load(core::String const& path, core::StreamSequencerBuilder& builder);

private:
    void ReadIdentity(core::StreamSequencerBuilder& builder);
    void ReadCrypt(core::StreamSequencerBuilder& builder);
    void ReadAttributes(core::StreamSequencerBuilder& builder);
    void ReadFiles(core::String const& directory, core::StreamSequencerBuilder& builder);
    /// Returns false, with an error, if the file of that name has no origin.
    bool ReadFile(core::String const& name, core::String const& directory,
                  core::StreamSequencerBuilder& builder);

    std::vector<core::Fault>& errors_;
    sys::ConfFile file_;
};

}  // namespace pack
