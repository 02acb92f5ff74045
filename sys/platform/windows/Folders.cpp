#include "sys/platform/Folders.h"

#include <windows.h>

#include <cerrno>

#include "sys/platform/windows/errors.h"
#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// A search through the entries of a folder.
class Search {
public:
    explicit Search(char const* path) {
        if (*path == '\0') {
            search_ = INVALID_HANDLE_VALUE;
            result_ = -ENOENT;
            return;
        }
        std::string pattern = path;
        bool const ends = pattern.ends_with('\\') || pattern.ends_with('/');
        pattern.append(ends ? "*" : "\\*");
        search_ = FindFirstFileW(systemPath(pattern.c_str()).c_str(), &entry_);
        result_ = resultOf(search_ != INVALID_HANDLE_VALUE);
        // Asked for "file\*" the system says that the path is not there.
        FileStatus status;
        if (result_ == -ENOENT && statPath(path, status) == 0 &&
            status.type != FileType::directory) {
            result_ = -ENOTDIR;
        }
    }
    Search(Search const&) = delete;
    Search& operator=(Search const&) = delete;
    ~Search() {
        if (search_ != INVALID_HANDLE_VALUE) {
            FindClose(search_);
        }
    }

    /// 0 when the folder can be read.
    int Result() const { return result_; }
    WIN32_FIND_DATAW const& Entry() const { return entry_; }
    /// Goes to the next entry: 1, 0 when there is none, or a negative error code.
    int Next() {
        if (FindNextFileW(search_, &entry_) != 0) {
            return 1;
        }
        return GetLastError() == ERROR_NO_MORE_FILES ? 0 : negativeLastError();
    }

private:
    WIN32_FIND_DATAW entry_{};
    HANDLE search_;
    int result_;
};

bool isLink(WIN32_FIND_DATAW const& entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            entry.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

FileType typeOf(std::string const& folder, std::string const& name, WIN32_FIND_DATAW const& entry) {
    if (!isLink(entry)) {
        bool const directory = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return directory ? FileType::directory : FileType::regular;
    }
    std::string path = folder;
    path.append("\\").append(name);
    FileStatus status;
    return statPath(path.c_str(), status) == 0 ? status.type : FileType::other;
}

}  // namespace

int listFolder(char const* path, std::vector<FolderEntry>& entries) {
    Search search(path);
    if (search.Result() != 0) {
        return search.Result();
    }
    int more = 1;
    while (more > 0) {
        std::string const name = narrow(search.Entry().cFileName);
        if (name != "." && name != "..") {
            entries.push_back({name, typeOf(path, name, search.Entry()), isLink(search.Entry())});
        }
        more = search.Next();
    }
    return more;
}

int checkFolder(char const* path) {
    return Search(path).Result();
}

int createFolder(char const* path) {
    return resultOf(CreateDirectoryW(systemPath(path).c_str(), nullptr) != 0);
}

int changeFolder(char const* path) {
    return resultOf(SetCurrentDirectoryW(wide(path).c_str()) != 0);
}

int currentFolder(std::string& path) {
    std::wstring found(GetCurrentDirectoryW(0, nullptr), L'\0');
    DWORD const length = GetCurrentDirectoryW(static_cast<DWORD>(found.size()), found.data());
    if (length == 0) {
        return negativeLastError();
    }
    found.resize(length);
    path = narrow(found);
    return 0;
}

std::string temporaryFolder() {
    wchar_t found[MAX_PATH + 1] = {};
    DWORD const length = GetTempPathW(MAX_PATH + 1, found);
    return narrow({found, length});
}

}  // namespace sys::platform
