#pragma once

#include <functional>
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
    struct List {
        char const* count;        ///< the name of its number of entries
        char const* entry;        ///< the pattern of an entry's name
        unsigned long long most;  ///< entries
    };

    void ReadIdentity(core::StreamSequencerBuilder& builder);
    void ReadCrypt(core::StreamSequencerBuilder& builder);
    /// Calls read with the name of each entry of a list: as many as its count or, without a count,
    /// all that the manifest contains, whose numbers must begin with 0 and have no gaps. With a
    /// count, stops when read returns false. Returns false if there is neither count nor entry.
    bool ReadList(List const& list, std::function<bool(core::String const& name)> const& read);
    void ReadAttributes(core::StreamSequencerBuilder& builder);
    void ReadFiles(core::String const& directory, core::StreamSequencerBuilder& builder);
    /// Returns false, with an error, if the file of that name has no origin.
    bool ReadFile(core::String const& name, core::String const& directory,
                  core::StreamSequencerBuilder& builder);

    std::vector<core::Fault>& errors_;
    sys::ConfFile file_;
};

}  // namespace pack
