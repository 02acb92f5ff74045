#pragma once

#include <map>
#include <set>
#include <vector>

#include "core/text/String.h"
#include "core/text/message.h"

namespace sys {

/// The entries of a configuration file, removed as they are read: any left at the end are unknown,
/// most likely misspelt. Names are case-insensitive.
class ConfFile {
public:
    /// Adds errors in the file to errors, under title. Both must outlive this object.
    ConfFile(char const* title, std::vector<core::Fault>& errors)
        : title_(title), errors_(errors) {}

    /// Reads the file at path. Returns 0 or a negative errno value, which is not added to the
    /// errors. Lines without a name and a value, names that appear twice and NUL characters, which
    /// would truncate a value, are errors.
    int Load(core::String const& path);

    bool Has(core::String const& name) const;
    /// Returns the numbers of a list's entries, sorted: n for each name that is "list[n]" or begins
    /// with "list[n].", where n is a decimal number without leading zeros.
    std::set<unsigned long long> NumbersOf(core::String const& list) const;
    /// Removes an entry and stores its value. Returns false if it is missing; value is unchanged.
    bool Take(core::String const& name, core::String& value);
    /// Removes an entry and stores its value as a number, see core::parseWhole. If it is not a
    /// number up to largest, adds an error, stores 0 and returns false.
    bool TakeNumber(core::String const& name, int base, unsigned long long largest,
                    unsigned long long& value);
    /// Adds an error for every remaining entry.
    void RejectUnknown();
    /// Adds an error, "name fact".
    void AddError(core::String const& name, core::String const& fact);

private:
    char const* const title_;
    std::vector<core::Fault>& errors_;
    std::map<core::String, core::String> entries_;  ///< by name in lower case
};

}  // namespace sys
