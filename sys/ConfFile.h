#pragma once

#include <map>
#include <string>

#include "core/text/String.h"
#include "core/text/StringArray.h"

namespace sys {

/// The names and values of a configuration file, to be taken out one by one: what is left in the
/// end means nothing and is most likely misspelt. Letters of names may be large or small.
class ConfFile {
public:
    /// What is wrong goes to errors, as title "=" message. They must outlive this object.
    ConfFile(char const* title, core::StringArray& errors) : title_(title), errors_(errors) {}

    /// Reads the file at path: 0, or a negative error code, which is no entry of the errors. Lines
    /// that are no pair and names that are there twice are errors.
    int Load(core::String const& path);

    bool Has(core::String const& name) const;
    /// Takes an entry out; false when there is none, and value stays as it was.
    bool Take(core::String const& name, core::String& value);
    /// The same for a number, as core::readWhole reads it; one that is none is an error.
    bool TakeNumber(core::String const& name, int base, unsigned long long largest,
                    unsigned long long& value);
    /// Makes an error of every entry that is still there.
    void RefuseTheRest();
    /// Adds an error, "name what".
    void Wrong(core::String const& name, core::String const& what);

private:
    char const* const title_;
    core::StringArray& errors_;
    std::map<std::string, core::String> entries_;  ///< by name in small letters
};

}  // namespace sys
