#include "sys/platform/Files.h"

#include <windows.h>

#include <cerrno>
#include <random>
#include <utility>

#include "sys/platform/PathStyle.h"
#include "sys/platform/windows/system.h"

namespace sys {

PathStyle const& pathStyle() {
    return windowsPathStyle;
}

}  // namespace sys

namespace sys::platform {

namespace {

/// Allows other processes to read, replace and delete an open file.
DWORD const shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE asHandle(FileHandle file) {
    return reinterpret_cast<HANDLE>(file);
}

/// A handle that is closed when its scope ends.
class ScopedHandle {
public:
    explicit ScopedHandle(HANDLE handle) : handle_(handle) {}
    ScopedHandle(ScopedHandle const&) = delete;
    ScopedHandle& operator=(ScopedHandle const&) = delete;
    ~ScopedHandle() {
        if (IsOpen()) {
            CloseHandle(handle_);
        }
    }

    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    FileHandle AsFile() const { return reinterpret_cast<FileHandle>(handle_); }

private:
    HANDLE const handle_;
};

DWORD accessOf(unsigned mode) {
    DWORD access = (mode & openRead) != 0 ? GENERIC_READ : 0;
    if ((mode & openWrite) != 0) {
        // With this permission alone the operating system writes at the end.
        access |= (mode & openAppend) != 0 ? FILE_GENERIC_WRITE & ~DWORD{FILE_WRITE_DATA}
                                           : DWORD{GENERIC_WRITE};
    }
    return access;
}

DWORD dispositionOf(unsigned mode) {
    if ((mode & openTruncate) != 0) {
        return (mode & openCreate) != 0 ? CREATE_ALWAYS : TRUNCATE_EXISTING;
    }
    return (mode & openCreate) != 0 ? OPEN_ALWAYS : OPEN_EXISTING;
}

DWORD attributesOf(unsigned mode) {
    bool const follows = (mode & openNoFollow) == 0;
    return FILE_ATTRIBUTE_NORMAL | (follows ? DWORD{0} : DWORD{FILE_FLAG_OPEN_REPARSE_POINT});
}

/// Opens the entry at path for queries only; flags can prevent that links are followed.
HANDLE openForQuery(wchar_t const* path, DWORD flags) {
    return CreateFileW(path, FILE_READ_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
}

bool isLink(HANDLE handle) {
    FILE_ATTRIBUTE_TAG_INFO info{};
    return GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &info, sizeof info) != 0 &&
           (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (info.ReparseTag == IO_REPARSE_TAG_SYMLINK ||
            info.ReparseTag == IO_REPARSE_TAG_MOUNT_POINT);
}

int statAt(char const* path, DWORD flags, FileStatus& status) {
    ScopedHandle const found(openForQuery(systemPath(path).c_str(), flags));
    if (!found.IsOpen()) {
        return negativeLastError();
    }
    int const result = statFile(found.AsFile(), status);
    if (result == 0 && flags != 0 && isLink(found.Get())) {
        status.type = FileType::link;
    }
    return result;
}

/// Six random characters, in lower case because file names are case-insensitive.
std::string uniquePart() {
    static constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::random_device random;
    std::string part;
    for (int i = 0; i < 6; ++i) {
        part += digits[random() % 36];
    }
    return part;
}

}  // namespace

int openFile(char const* path, unsigned mode, FileHandle& opened) {
    std::wstring const name = systemPath(path);
    HANDLE const file = CreateFileW(name.c_str(), accessOf(mode), shareAll, nullptr,
                                    dispositionOf(mode), attributesOf(mode), nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        int const error = negativeLastError();
        DWORD const attributes = GetFileAttributesW(name.c_str());
        bool const directory =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return directory ? -EISDIR : error;
    }
    if ((mode & openNoFollow) != 0 && isLink(file)) {
        CloseHandle(file);
        return -ELOOP;
    }
    opened = reinterpret_cast<FileHandle>(file);
    return 0;
}

int createUniqueFile(char const* prefix, std::string& path, FileHandle& opened) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = prefix;
        name += uniquePart();
        // The permissions are those of the directory, which the user alone can access.
        HANDLE const file =
            CreateFileW(systemPath(name.c_str()).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll,
                        nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            // A copy could run out of memory and leave the file without an owner.
            path = std::move(name);
            opened = reinterpret_cast<FileHandle>(file);
            return 0;
        }
        if (int const error = negativeLastError(); error != -EEXIST) {
            return error;
        }
    }
    return -EEXIST;
}

int readFile(FileHandle file, void* buffer, int count) {
    if (count < 1) {
        return 0;
    }
    DWORD got = 0;
    if (ReadFile(asHandle(file), buffer, static_cast<DWORD>(count), &got, nullptr) != 0) {
        return static_cast<int>(got);
    }
    int const error = negativeLastError();
    return error == -EPIPE ? 0 : error;  // the writer has closed the pipe: its end
}

int writeFile(FileHandle file, void const* data, int count) {
    if (count < 1) {
        return 0;
    }
    DWORD put = 0;
    if (WriteFile(asHandle(file), data, static_cast<DWORD>(count), &put, nullptr) == 0) {
        return negativeLastError();
    }
    return static_cast<int>(put);
}

long long seekFile(FileHandle file, long long offset, SeekOrigin origin) {
    if (GetFileType(asHandle(file)) != FILE_TYPE_DISK) {
        return GetLastError() == ERROR_INVALID_HANDLE ? -EBADF : -ESPIPE;
    }
    DWORD const method = origin == SeekOrigin::begin     ? FILE_BEGIN
                         : origin == SeekOrigin::current ? FILE_CURRENT
                                                         : FILE_END;
    LARGE_INTEGER distance{};
    distance.QuadPart = offset;
    LARGE_INTEGER position{};
    if (SetFilePointerEx(asHandle(file), distance, &position, method) == 0) {
        return negativeLastError();
    }
    return position.QuadPart;
}

int resizeFile(FileHandle file, long long size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = size;
    return SetFileInformationByHandle(asHandle(file), FileEndOfFileInfo, &end, sizeof end) != 0
               ? 0
               : negativeLastError();
}

int lockFile(FileHandle file) {
    // A byte that no file has: locked bytes cannot be read by others.
    OVERLAPPED position{};
    position.OffsetHigh = 0x7FFF'FFFF;
    if (LockFileEx(asHandle(file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                   &position) != 0) {
        return 0;
    }
    return GetLastError() == ERROR_LOCK_VIOLATION ? -EWOULDBLOCK : negativeLastError();
}

int syncFile(FileHandle file) {
    return resultOf(FlushFileBuffers(asHandle(file)) != 0);
}

int statFile(FileHandle file, FileStatus& status) {
    SetLastError(ERROR_SUCCESS);
    DWORD const kind = GetFileType(asHandle(file));
    if (kind != FILE_TYPE_DISK) {
        if (kind == FILE_TYPE_UNKNOWN && GetLastError() != ERROR_SUCCESS) {
            return negativeLastError();
        }
        status.size = 0;
        status.type = kind == FILE_TYPE_PIPE   ? FileType::pipe
                      : kind == FILE_TYPE_CHAR ? FileType::device
                                               : FileType::other;
        return 0;
    }
    BY_HANDLE_FILE_INFORMATION info{};
    if (GetFileInformationByHandle(asHandle(file), &info) == 0) {
        return negativeLastError();
    }
    // In units of 100 ns since 1601.
    long long const ticks = static_cast<long long>(info.ftLastWriteTime.dwHighDateTime) << 32 |
                            info.ftLastWriteTime.dwLowDateTime;
    status.modified = ticks / 10'000 - 11'644'473'600'000;
    status.size = static_cast<long long>(info.nFileSizeHigh) << 32 | info.nFileSizeLow;
    status.type = (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileType::directory
                                                                          : FileType::regular;
    status.volume = info.dwVolumeSerialNumber;
    status.number = std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow;
    return 0;
}

void copyPermissions(FileHandle from, FileHandle to) {
    FILE_BASIC_INFO info{};
    if (GetFileInformationByHandleEx(asHandle(from), FileBasicInfo, &info, sizeof info) == 0 ||
        (info.FileAttributes & FILE_ATTRIBUTE_READONLY) == 0) {
        return;
    }
    // Times of 0 are left unchanged.
    FILE_BASIC_INFO readOnly{};
    readOnly.FileAttributes = FILE_ATTRIBUTE_READONLY;
    SetFileInformationByHandle(asHandle(to), FileBasicInfo, &readOnly, sizeof readOnly);
}

int closeFile(FileHandle file) {
    return resultOf(CloseHandle(asHandle(file)) != 0);
}

int statPath(char const* path, FileStatus& status) {
    return statAt(path, 0, status);
}

int statEntry(char const* path, FileStatus& status) {
    return statAt(path, FILE_FLAG_OPEN_REPARSE_POINT, status);
}

int pathOf(FileHandle file, std::wstring& path) {
    DWORD const needed = GetFinalPathNameByHandleW(asHandle(file), nullptr, 0, 0);
    path.assign(needed, L'\0');
    DWORD const length = GetFinalPathNameByHandleW(asHandle(file), path.data(), needed, 0);
    if (length == 0 || length >= needed) {
        return negativeLastError();
    }
    path.resize(length);
    return 0;
}

int resolvePath(char const* path, std::string& resolved) {
    ScopedHandle const found(openForQuery(systemPath(path).c_str(), 0));
    if (!found.IsOpen()) {
        return negativeLastError();
    }
    std::wstring name;
    if (int const result = pathOf(found.AsFile(), name); result != 0) {
        return result;
    }
    if (name.starts_with(L"\\\\?\\UNC\\")) {
        name.replace(0, 8, L"\\\\");
    } else if (name.starts_with(L"\\\\?\\")) {
        name.erase(0, 4);
    }
    resolved = toUtf8(name);
    return 0;
}

int removeFile(char const* path) {
    std::wstring const name = systemPath(path);
    if (DeleteFileW(name.c_str()) != 0) {
        return 0;
    }
    int const error = negativeLastError();
    FileStatus status;
    if (statEntry(path, status) != 0) {
        return error;
    }
    if (status.type == FileType::directory) {
        return -EISDIR;
    }
    // A link to a directory is deleted like a directory; its target stays.
    bool const removed = status.type == FileType::link && RemoveDirectoryW(name.c_str()) != 0;
    return removed ? 0 : error;
}

int renameFile(char const* from, char const* to, bool replace) {
    return resultOf(MoveFileExW(systemPath(from).c_str(), systemPath(to).c_str(),
                                replace ? MOVEFILE_REPLACE_EXISTING : 0) != 0);
}

namespace {

/// A search through the entries of a directory.
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
        // For "file\*" the operating system reports that the path does not exist.
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

    /// Returns 0 if the directory can be read, otherwise a negative errno value.
    int Result() const { return result_; }
    WIN32_FIND_DATAW const& Entry() const { return entry_; }
    /// Goes to the next entry. Returns 1, 0 at the end, or a negative errno value.
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

FileType typeOf(std::string const& directory, std::string const& name,
                WIN32_FIND_DATAW const& entry) {
    if (!isLink(entry)) {
        return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileType::directory
                                                                        : FileType::regular;
    }
    std::string path = directory;
    path.append("\\").append(name);
    FileStatus status;
    return statPath(path.c_str(), status) == 0 ? status.type : FileType::other;
}

}  // namespace

int listDirectory(char const* path, std::vector<DirectoryEntry>& entries) {
    Search search(path);
    if (search.Result() != 0) {
        return search.Result();
    }
    int more = 1;
    while (more > 0) {
        std::string const name = toUtf8(search.Entry().cFileName);
        if (name != "." && name != "..") {
            entries.push_back({name, typeOf(path, name, search.Entry()), isLink(search.Entry())});
        }
        more = search.Next();
    }
    return more;
}

int checkDirectory(char const* path) {
    return Search(path).Result();
}

int createDirectory(char const* path) {
    return resultOf(CreateDirectoryW(systemPath(path).c_str(), nullptr) != 0);
}

int changeDirectory(char const* path) {
    return resultOf(SetCurrentDirectoryW(toUtf16(path).c_str()) != 0);
}

int currentDirectory(std::string& path) {
    std::wstring found(GetCurrentDirectoryW(0, nullptr), L'\0');
    DWORD const length = GetCurrentDirectoryW(static_cast<DWORD>(found.size()), found.data());
    if (length == 0) {
        return negativeLastError();
    }
    found.resize(length);
    path = toUtf8(found);
    return 0;
}

std::string temporaryDirectory() {
    wchar_t found[MAX_PATH + 1] = {};
    DWORD const length = GetTempPathW(MAX_PATH + 1, found);
    return toUtf8({found, length});
}

namespace {

enum class Missing { fail, create };

/// Delimiters, drives, streams and wildcards.
char const reservedCharacters[] = "\\:*?\"<>|";

/// Opens a directory such that other processes can neither delete nor rename it; flags can prevent
/// that a link is followed.
int lockDirectory(char const* path, DWORD flags, FileHandle& opened) {
    HANDLE const directory = CreateFileW(systemPath(path).c_str(), FILE_LIST_DIRECTORY,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
    if (directory == INVALID_HANDLE_VALUE) {
        return negativeLastError();
    }
    opened = reinterpret_cast<FileHandle>(directory);
    return 0;
}

/// A walk down from a directory, and the operations in the directory reached. It locks every
/// directory on its way, so the path to the last one remains what it was when it was checked.
class Descent {
public:
    Descent() = default;
    Descent(Descent const&) = delete;
    Descent& operator=(Descent const&) = delete;
    ~Descent() {
        for (FileHandle const directory : locked_) {
            closeFile(directory);
        }
    }

    int Start(FileHandle directory) {
        std::wstring path;
        int const result = pathOf(directory, path);
        path_ = toUtf8(path);
        return result;
    }

    int Enter(std::string const& name, Missing missing) {
        path_ = PathOf(name);
        int const created = missing == Missing::create ? createDirectory(path_.c_str()) : 0;
        if (created != 0 && created != -EEXIST) {
            return created;
        }
        FileHandle opened = noFile;
        int result = lockDirectory(path_.c_str(), FILE_FLAG_OPEN_REPARSE_POINT, opened);
        if (result != 0) {
            return result;
        }
        locked_.push_back(opened);
        FileStatus status;
        result = statEntry(path_.c_str(), status);
        if (result != 0 || status.type == FileType::directory) {
            return result;
        }
        return status.type == FileType::link ? -ELOOP : -ENOTDIR;
    }

    int Stat(std::string const& name, FileStatus& status) const {
        return statEntry(PathOf(name).c_str(), status);
    }

    /// The permissions are those of the directory; RenamePart keeps those of a replaced file.
    int CreatePart(std::string const&, char const* part, PartPermissions,
                   FileHandle& opened) const {
        HANDLE const file = CreateFileW(
            systemPath(PathOf(part).c_str()).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll,
            nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return negativeLastError();
        }
        opened = reinterpret_cast<FileHandle>(file);
        return 0;
    }

    int RenamePart(std::string const& name, char const* part, PartPermissions permissions,
                   bool replace) const {
        std::string const from = PathOf(part);
        std::string const to = PathOf(name);
        FileStatus status;
        if (replace && permissions == PartPermissions::ofTarget && Stat(name, status) == 0 &&
            status.type == FileType::regular) {
            return resultOf(ReplaceFileW(systemPath(to.c_str()).c_str(),
                                         systemPath(from.c_str()).c_str(), nullptr,
                                         REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0);
        }
        return renameFile(from.c_str(), to.c_str(), replace);
    }

    int Remove(char const* name) const { return removeFile(PathOf(name).c_str()); }

private:
    std::string PathOf(std::string const& name) const { return path_ + '\\' + name; }

    std::string path_;
    std::vector<FileHandle> locked_;
};

}  // namespace

int ConfinedDirectory::Open(char const* path) {
    Close();
    FileStatus status;
    int const result = statPath(path, status);
    if (result == 0 && status.type != FileType::directory) {
        return -ENOTDIR;
    }
    return result == 0 ? lockDirectory(path, 0, directory_) : result;
}

bool ConfinedDirectory::AllowsName(std::string_view name) const {
    DWORD limit = 0;
    bool const known = GetVolumeInformationByHandleW(asHandle(directory_), nullptr, 0, nullptr,
                                                     &limit, nullptr, nullptr, 0) != 0;
    return toUtf16(name).size() <= (known && limit > 0 ? limit : 255);
}

}  // namespace sys::platform

#include "sys/platform/commonFiles.inl"
