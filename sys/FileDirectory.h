#pragma once

#include <vector>

#include "core/object/BasicClass.h"
#include "core/text/StringArray.h"

namespace core {

/// The entries of a folder, as they were when it was last scanned, sorted by the bytes of their
/// names. An int result is 0 or a negative error code: an errno value with its sign changed.
class FileDirectory : public BasicClass {
public:
    char const* ClassName() const override;

    /// Scans the folder path, and with subFolders all those below it; a directory comes before
    /// its entries. Clears the list of a directory opened before, even on failure.
    int Open(String const& path, bool subFolders);
    /// Scans the opened folder again (-EBADF: there is none). When that fails, the list stays.
    int Refresh();
    /// Empties the list.
    void Close();
    bool IsOpened() const { return opened_; }

    /// Fills the list with those entries of the folder path whose name matches pattern ("*" any
    /// characters, "?" any one). When the folder cannot be read, the list stays.
    int ScanDir(String const& path, String const& pattern);

    int Count() const { return paths_.Count(); }
    /// The path of the entry: that of its folder, as it was given, and its name. Empty outside the
    /// list.
    String GetPath(int index) const;
    /// The size in bytes, 0 for a folder. A negative error code for an entry that nothing is known
    /// of, such as a link that leads nowhere; -EINVAL outside the list.
    long long GetSize(int index) const;

private:
    bool has(int index) const { return index >= 0 && index < Count(); }

    String path_;
    bool subFolders_ = false;
    bool opened_ = false;
    StringArray paths_;
    std::vector<long long> sizes_;
};

}  // namespace core
