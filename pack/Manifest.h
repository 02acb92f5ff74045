#pragma once

#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "sys/ConfFile.h"

namespace pack {

/// The manifest of an archive, a configuration file: docs/ravelink-pack.md lists its names, which
/// are case-insensitive.
class Manifest {
public:
    /// Errors in the manifest are added to errors, which must outlive this object.
    explicit Manifest(std::vector<core::Fault>& errors)
        : errors_(errors), file_("Bad manifest", errors) {}

    /// Reads the file and adds all that it says to the builder; false when anything is wrong with
    /// it: also a name that means nothing, which would be a misspelt one.
    bool Load(core::String const& path, core::StreamSequencerBuilder& builder);

private:
    void TakeIdentity(core::StreamSequencerBuilder& builder);
    void TakeCrypt(core::StreamSequencerBuilder& builder);
    void TakeAttributes(core::StreamSequencerBuilder& builder);
    void TakeFiles(core::String const& folder, core::StreamSequencerBuilder& builder);
    bool TakeFile(core::String const& name, core::String const& folder,
                  core::StreamSequencerBuilder& builder);

    std::vector<core::Fault>& errors_;
    sys::ConfFile file_;
};

}  // namespace pack
