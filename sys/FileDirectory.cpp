#include "sys/FileDirectory.h"

#include <cerrno>

#include "sys/findPaths.h"
#include "sys/platform/Files.h"

namespace core {

namespace {

long long sizeOf(String const& path) {
    sys::platform::FileStatus status;
    int const result = sys::platform::statPath(path.getCString(), status);
    if (result != 0) {
        return result;
    }
    // What a file system keeps for a folder is no size of anything in it.
    return status.type == sys::platform::FileType::directory ? 0 : status.size;
}

}  // namespace

char const* FileDirectory::ClassName() const {
    return "FileDirectory";
}

int FileDirectory::Open(String const& path, bool subFolders) {
    Close();
    subFolders_ = subFolders;
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
    int const result = sys::findPaths(path, pattern, subFolders_, true, paths);
    if (result != 0) {
        return result;
    }
    paths_ = paths;
    sizes_.clear();
    for (int i = 0; i < paths_.Count(); ++i) {
        sizes_.push_back(sizeOf(paths_[i]));
    }
    return 0;
}

String FileDirectory::GetPath(int index) const {
    return has(index) ? paths_[index] : String();
}

long long FileDirectory::GetSize(int index) const {
    return has(index) ? sizes_[static_cast<std::size_t>(index)] : -EINVAL;
}

}  // namespace core
