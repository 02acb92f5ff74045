#pragma once

#include <map>
#include <string>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace pack {

/// The recipe of an archive, a configuration file: README.md lists its names. Letters of names may
/// be large or small.
class Manifest {
public:
    /// What is wrong goes to errors, as title "=" message.
    explicit Manifest(core::StringArray& errors) : errors_(errors) {}

    /// Reads the file and adds all that it says to the builder; false when anything is wrong with
    /// it: also a name that means nothing, which would be a misspelt one.
    bool Load(core::String const& path, core::StreamSequencerBuilder& builder);

private:
    void TakeEntries(core::StringArray const& lines);
    void TakeIdentity(core::StreamSequencerBuilder& builder);
    void TakeCrypt(core::StreamSequencerBuilder& builder);
    void TakeAttributes(core::StreamSequencerBuilder& builder);
    void TakeFiles(core::String const& folder, core::StreamSequencerBuilder& builder);
    bool TakeFile(core::String const& name, core::String const& folder,
                  core::StreamSequencerBuilder& builder);

    /// Takes an entry out; false when there is none.
    bool Take(core::String const& name, core::String& value);
    /// The same for a number; one that is none is an error. A base of 0 means decimal, or
    /// hexadecimal behind "0x".
    bool TakeNumber(core::String const& name, int base, unsigned long long largest,
                    unsigned long long& value);
    void Wrong(core::String const& name, core::String const& what);

    core::StringArray& errors_;
    std::map<std::string, core::String> entries_;  ///< by name in small letters
};

}  // namespace pack
