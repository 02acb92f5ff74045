#pragma once

#include <string_view>
#include <vector>

#include "core/object/BasicClass.h"
#include "core/text/StringArray.h"

namespace core {

/// The entries of a directory as of the last scan, sorted by the bytes of their names. An int
/// result is 0 or a negative errno value.
class FileDirectory : public BasicClass {
public:
    char const* ClassName() const override;

    /// Scans the directory path and, with recursive, all below it; a directory comes before its
    /// entries. Clears the list of a directory opened before, even on failure.
    int Open(String const& path, bool recursive);
    /// Scans the opened directory again (-EBADF if there is none). On failure the list is
    /// unchanged.
    int Refresh();
    /// Clears the list.
    void Close();
    bool IsOpened() const { return opened_; }

    /// Fills the list with the entries of the directory path whose names match pattern ("*" matches
    /// any characters, "?" any one byte). On failure the list is unchanged.
    int ScanDir(String const& path, String const& pattern);

    int Count() const { return paths_.Count(); }
    /// Returns the path of an entry, which starts with the path given to the scan; empty for an
    /// index outside the list.
    String GetPath(int index) const;
    /// Returns the size in bytes, 0 for a directory. Returns a negative errno value for an entry
    /// without a status, such as a dangling link; -EINVAL for an index outside the list.
    long long GetSize(int index) const;

private:
    bool IsInList(int index) const { return index >= 0 && index < Count(); }

    String path_;
    bool recursive_ = false;
    bool opened_ = false;
    StringArray paths_;
    std::vector<long long> sizes_;
};

}  // namespace core

namespace sys {

/// Whether the whole name matches pattern, in which "*" matches any characters, even none, "?" any
/// one byte, and every other character itself.
bool matchesPattern(std::string_view name, std::string_view pattern);

}  // namespace sys
