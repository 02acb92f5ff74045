#include "sys/platform/Files.h"

#include <windows.h>

#include <cerrno>
#include <utility>

#include "sys/platform/windows/errors.h"
#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// An open file does not hinder others from reading, replacing or deleting it.
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
        // Without the right to write anywhere else the system puts each write at the end.
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

/// Opens what stands at a path to ask about it; flags may say that links are not followed.
HANDLE openToAsk(wchar_t const* path, DWORD flags) {
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
    ScopedHandle const found(openToAsk(systemPath(path).c_str(), flags));
    if (!found.IsOpen()) {
        return negativeLastError();
    }
    int const result = statFile(found.AsFile(), status);
    if (result == 0 && flags != 0 && isLink(found.Get())) {
        status.type = FileType::link;
    }
    return result;
}

/// Six characters that another call, in this process or another, hardly gets at the same time.
std::string uniquePart() {
    static constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    LARGE_INTEGER now{};
    QueryPerformanceCounter(&now);
    auto number = static_cast<unsigned long long>(now.QuadPart) * 0x9E3779B97F4A7C15ULL;
    number ^= GetCurrentThreadId() * 0xD1B54A32D192ED03ULL;
    std::string part;
    for (int i = 0; i < 6; ++i) {
        part += digits[(number >> 16) % 36];
        number = number * 6364136223846793005ULL + 1442695040888963407ULL;
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
        bool const folder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return folder ? -EISDIR : error;
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
        // Who may use it is the matter of its folder, which the system keeps to the user.
        HANDLE const file =
            CreateFileW(systemPath(name.c_str()).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll,
                        nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            // A copy could find no memory, and the file would have no owner.
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
    return error == -EPIPE ? 0 : error;  // the writer of a pipe has gone: its end
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
    // Its times, left at 0, stay as they are.
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
    ScopedHandle const found(openToAsk(systemPath(path).c_str(), 0));
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
    resolved = narrow(name);
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
    // A link to a folder goes as a folder goes, and leaves what it leads to.
    bool const removed = status.type == FileType::link && RemoveDirectoryW(name.c_str()) != 0;
    return removed ? 0 : error;
}

int renameFile(char const* from, char const* to, bool replace) {
    return resultOf(MoveFileExW(systemPath(from).c_str(), systemPath(to).c_str(),
                                replace ? MOVEFILE_REPLACE_EXISTING : 0) != 0);
}

}  // namespace sys::platform
