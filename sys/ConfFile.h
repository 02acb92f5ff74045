#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/text/String.h"
#include "core/text/message.h"

namespace sys {

/// The names and values of a configuration file, to be removed one by one: the rest is unknown and
/// most likely misspelt. Names are case-insensitive.
class ConfFile {
public:
    /// Errors in the file are added to errors, under title. Both must outlive this object.
    ConfFile(char const* title, std::vector<core::Fault>& errors)
        : title_(title), errors_(errors) {}

    /// Reads the file at path. Returns 0 or a negative errno value, which is not added to the
    /// errors. Lines without a name and a value, names that appear twice and NUL characters, which
    /// would truncate a value, are errors.
    int Load(core::String const& path);

    bool Has(core::String const& name) const;
    /// Removes an entry and stores its value. Returns false if it is missing; value is unchanged.
    bool Take(core::String const& name, core::String& value);
    /// The same for a number, see core::parseWhole. Any other value is an error: false, and
    /// value is 0.
    bool TakeNumber(core::String const& name, int base, unsigned long long largest,
                    unsigned long long& value);
    /// Adds an error for every remaining entry.
    void RefuseTheRest();
    /// Adds an error, "name what".
    void Wrong(core::String const& name, core::String const& what);

private:
    char const* const title_;
    std::vector<core::Fault>& errors_;
    std::map<std::string, core::String> entries_;  ///< by name in lower case
};

}  // namespace sys
