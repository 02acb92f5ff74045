#include "sys/FileDirectory.h"

#include <algorithm>
#include <cerrno>

#include "sys/file.h"
#include "sys/platform/Files.h"

namespace sys {

namespace {

/// Appends the paths of the entries of directory whose names match pattern: see sys::file::search.
/// Without a directory these are the names of those in the working directory. Returns 0 or a
/// negative errno value; unreadable subdirectories count as empty.
int findPaths(core::String const& directory, core::String const& pattern, bool recursive,
              bool directories, core::StringArray& paths) {
    std::vector<platform::DirectoryEntry> entries;
    int const result =
        platform::listDirectory(directory.IsEmpty() ? "." : directory.getCString(), entries);
    if (result != 0) {
        return result;
    }
    std::sort(entries.begin(), entries.end(),
              [](auto const& left, auto const& right) { return left.name < right.name; });
    for (platform::DirectoryEntry const& entry : entries) {
        bool const isDirectory = entry.type == platform::FileType::directory;
        core::String const path = directory.AppendNewPath(entry.name.c_str());
        if ((directories || !isDirectory) && matchesPattern(entry.name, pattern.View())) {
            paths.Add(path);
        }
        // The maximum length of a path ends the recursion.
        if (recursive && isDirectory && !entry.isLink) {
            findPaths(path, pattern, recursive, directories, paths);
        }
    }
    return 0;
}

long long sizeOf(core::String const& path) {
    platform::FileStatus status;
    int const result = platform::statPath(path.getCString(), status);
    if (result != 0) {
        return result;
    }
    // The size of a directory itself says nothing about its files.
    return status.type == platform::FileType::directory ? 0 : status.size;
}

}  // namespace

bool matchesPattern(std::string_view name, std::string_view pattern) {
    constexpr auto none = std::string_view::npos;
    std::size_t at = 0;
    std::size_t next = 0;
    // Backtracks only to the last star, so matching takes at most O(name * pattern) steps.
    std::size_t star = none;
    std::size_t starEnd = 0;  ///< the end of what the star matches
    while (at < name.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            starEnd = at;
        } else if (next < pattern.size() && (pattern[next] == '?' || pattern[next] == name[at])) {
            ++next;
            ++at;
        } else if (star != none) {
            next = star + 1;
            at = ++starEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == none;
}

core::StringArray file::search(core::String const& pattern, bool recursive, bool directories) {
    core::StringArray paths;
    findPaths(pattern.GetFilePath(), pattern.GetFileName(), recursive, directories, paths);
    return paths;
}

}  // namespace sys

namespace core {

char const* FileDirectory::ClassName() const {
    return "FileDirectory";
}

int FileDirectory::Open(String const& path, bool recursive) {
    Close();
    recursive_ = recursive;
    int const result = ScanDir(path, "*");
    if (result == 0) {
        path_ = path;
        opened_ = true;
    }
    return result;
}

int FileDirectory::Refresh() {
    return opened_ ? ScanDir(path_, "*") : -EBADF;
}

void FileDirectory::Close() {
    opened_ = false;
    paths_.Clear();
    sizes_.clear();
}

int FileDirectory::ScanDir(String const& path, String const& pattern) {
    StringArray paths;
    bool const directories = true;
    int const result = sys::findPaths(path, pattern, recursive_, directories, paths);
    if (result != 0) {
        return result;
    }
    paths_ = paths;
    sizes_.clear();
    for (int i = 0; i < paths_.Count(); ++i) {
        sizes_.push_back(sys::sizeOf(paths_[i]));
    }
    return 0;
}

String FileDirectory::GetPath(int index) const {
    return IsInList(index) ? paths_[index] : String();
}

long long FileDirectory::GetSize(int index) const {
    return IsInList(index) ? sizes_[static_cast<std::size_t>(index)] : -EINVAL;
}

}  // namespace core
